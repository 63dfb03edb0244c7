#pragma once

#include <QByteArray>
#include <QString>

namespace mosswick {

// A plain text as a pasteboard offers it: its bytes and how to read them. Decoding is left to
// whoever needs the words, so that a long text can be decoded off the main thread.
struct PlainText {
    QByteArray bytes;
    // The older X text types (STRING, TEXT) are Latin-1; the rest UTF-8.
    bool isLatin1 = false;
    // GTK hands text/plain out in MIME's canonical form, with CR LF line ends; the user's text had
    // the line ends of this system (Qt's own copy of the same text has LF).
    bool hasCanonicalLineEnds = false;

    QString decoded() const;
    // About the first `length` bytes, decoded: enough to name the text by its first line.
    QString head(qsizetype length) const;
};

}  // namespace mosswick
