#pragma once

#include <QString>

#include "settings/UpdateServices.h"

namespace mosswick {

// A copy of Mosswick installed from its archive (`make dist`, install.sh) under a prefix of the
// user's own: PREFIX/bin/mosswick and PREFIX/share/…, with the marker install.sh leaves in
// PREFIX/share/mosswick. An update is unpacked inside the prefix, then the binary is swapped in
// with a rename; the old binary stays beside it as mosswick.old until the new one has started.
class ArchiveInstallation final : public UpdateInstallation {
public:
    // The installation this process runs from; nothing for any other copy (a distribution's
    // package, a build folder).
    static std::unique_ptr<ArchiveInstallation> ofThisProcess();

    explicit ArchiveInstallation(QString prefix);

    QString install(const QByteArray& archive) override;
    // Waits for this process to end, then starts the installed binary; quits this one.
    void restart() override;
    // Run by the new copy once it is up: the old binary is no longer needed.
    void removePreviousCopy() const;

private:
    QString binary() const;

    QString prefix_;
};

}  // namespace mosswick
