#include "triggers/SystemLog.h"

#include <syslog.h>
#include <cstdio>

namespace mosswick::SystemLog {

namespace {

std::function<void(const QString&)>& sink() {
    static std::function<void(const QString&)> installed;
    return installed;
}

}  // namespace

void warning(const QString& line) {
    if (sink()) {
        sink()(line);
        return;
    }
    const QByteArray text = line.toUtf8();
    syslog(LOG_USER | LOG_WARNING, "%s", text.constData());
    std::fprintf(stderr, "<4>%s\n", text.constData());
}

void setSink(std::function<void(const QString&)> newSink) { sink() = std::move(newSink); }

}  // namespace mosswick::SystemLog
