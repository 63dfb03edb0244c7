#pragma once

#include "ingest/FilePromise.h"

namespace mosswick::testing {

// A promised file the test delivers, or fails, when it likes.
class FakeFilePromise final : public FilePromise {
public:
    FakeFilePromise(QStringList types, std::vector<QByteArray> names)
        : types_(std::move(types)), names_(std::move(names)) {}

    QStringList fileTypes() const override { return types_; }
    std::vector<QByteArray> fileNames() const override { return names_; }
    void receive(const Destination& destination, Reader reader) override {
        destination_ = destination;
        reader_ = std::move(reader);
    }

    bool wasAsked() const { return static_cast<bool>(reader_); }
    const std::optional<Destination>& destination() const { return destination_; }
    // Writes the file where it was asked for, under `name` (the proposed one when empty).
    std::filesystem::path write(const std::string& contents, std::filesystem::path name = {});
    void deliver(const std::filesystem::path& file) { reader_(Delivery{file, {}}); }
    void fail(const QString& problem) { reader_(Delivery{std::nullopt, problem}); }

private:
    QStringList types_;
    std::vector<QByteArray> names_;
    std::optional<Destination> destination_;
    Reader reader_;
};

}  // namespace mosswick::testing
