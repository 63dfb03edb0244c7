#pragma once

#include <QString>
#include <QStringList>

namespace mosswick {

// A desktop's settings tool run to its end: what it printed, or why it failed in words.
struct ProgramRun {
    bool ok = false;
    QString output;
    QString failure;

    // Runs `program` (looked up on PATH) with `arguments`, waiting at most a few seconds.
    static ProgramRun run(const QString& program, const QStringList& arguments);
};

}  // namespace mosswick
