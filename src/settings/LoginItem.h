#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

namespace mosswick {

// Whether Mosswick starts when the user logs in. The state lives outside Mosswick (the user may
// remove the entry by hand), so it is asked for, never remembered.
class LoginItem {
public:
    virtual ~LoginItem() = default;
    virtual bool isEnabled() const = 0;
    // True when the desktop still has to let Mosswick start at login (a sandbox's permission).
    virtual bool needsApproval() const { return false; }
    // Empty on success (or, where the desktop answers later, on asking), else the reason in
    // words.
    virtual QString setEnabled(bool enabled) = 0;

    // Called when the state changed without a setEnabled() returning it: a desktop's late answer.
    std::function<void()> onChange = [] {};
};

// For test runs and sessions where starting at login is not Mosswick's to change: always off,
// and a change touches nothing.
class NoLoginItem final : public LoginItem {
public:
    bool isEnabled() const override { return false; }
    QString setEnabled(bool) override { return {}; }
};

// Where Mosswick cannot arrange it itself: off, and turning it on fails with `reason`.
class UnavailableLoginItem final : public LoginItem {
public:
    explicit UnavailableLoginItem(QString reason) : reason_(std::move(reason)) {}
    bool isEnabled() const override { return false; }
    QString setEnabled(bool enabled) override { return enabled ? reason_ : QString(); }

private:
    QString reason_;
};

// The freedesktop way: a desktop entry named mosswick.desktop in the user's autostart folder,
// which every XDG desktop starts at login. Written whole (temporary file and rename), so a login
// never finds half an entry; switched off by removing it. An entry the user marked Hidden, or
// switched off in GNOME's own key, counts as off.
class XdgAutostartEntry final : public LoginItem {
public:
    // `folder` is the autostart folder; `executable` the installed program to start.
    XdgAutostartEntry(QString folder, QString executable);

    // $XDG_CONFIG_HOME/autostart.
    static QString defaultFolder();
    // The program this process runs from: an AppImage's own file when running from one.
    static QString installedExecutable();

    bool isEnabled() const override;
    QString setEnabled(bool enabled) override;

    QString path() const;
    static QByteArray contents(const QString& executable);
    // The program as an Exec= value: quoted, with the characters the desktop entry format reserves
    // escaped, whenever it holds anything but plain path characters.
    static QString execArgument(const QString& executable);

private:
    QString folder_;
    QString executable_;
};

// What the General pane shows of the login item: the switch and the line under it after a
// failure. The switch follows the real state, re-read each time the window shows.
class LoginItemState {
public:
    explicit LoginItemState(LoginItem& item) : item_(item) { refresh(); }

    void refresh();
    // The user flipped the switch. On failure the error line says why and the switch falls back
    // to what really is.
    void apply(bool enabled);

    bool launchAtLogin() const { return launchAtLogin_; }
    bool needsApproval() const { return needsApproval_; }
    // "Couldn't change the login item: <reason>", or empty.
    const QString& error() const { return error_; }

private:
    LoginItem& item_;
    bool launchAtLogin_ = false;
    bool needsApproval_ = false;
    QString error_;
};

}  // namespace mosswick
