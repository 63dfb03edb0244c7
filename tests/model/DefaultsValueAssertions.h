#pragma once

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <optional>

#include "model/JsonDefaultsStore.h"

namespace mosswick::testing {

// A stored value as its JSON, tagged with its type, for failure messages.
inline std::string describe(const std::optional<DefaultsValue>& value) {
    if (!value) return "(absent)";
    static const char* const types[] = {"bool", "integer", "double", "string", "string list", "blob"};
    const QJsonArray wrapped{JsonDefaultsStore::encode(*value)};
    const QByteArray json = QJsonDocument(wrapped).toJson(QJsonDocument::Compact);
    return std::string(types[value->index()]) + " " + json.mid(1, json.size() - 2).toStdString();
}

// Equal value and equal type: a boolean true is not the integer 1.
inline ::testing::AssertionResult sameValue(const std::optional<DefaultsValue>& actual,
                                            const DefaultsValue& expected) {
    if (actual == expected) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "got " << describe(actual) << ", expected " << describe(expected);
}

}  // namespace mosswick::testing
