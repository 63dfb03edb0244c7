#include "ingest/PlainText.h"

namespace mosswick {

namespace {

// CR LF pairs made LF in one pass: QString::replace moves the rest of the text at every pair, which
// took seconds for a text of 100 MB.
QByteArray withLineFeeds(QByteArray bytes) {
    const qsizetype first = bytes.indexOf("\r\n");
    if (first < 0) return bytes;
    char* out = bytes.data() + first;
    const char* end = bytes.constData() + bytes.size();
    for (const char* in = out; in != end; ++in) {
        if (*in == '\r' && in + 1 != end && in[1] == '\n') continue;
        *out++ = *in;
    }
    bytes.truncate(out - bytes.constData());
    return bytes;
}

}  // namespace

QString PlainText::decoded() const {
    const QByteArray text = hasCanonicalLineEnds ? withLineFeeds(bytes) : bytes;
    return isLatin1 ? QString::fromLatin1(text) : QString::fromUtf8(text);
}

QString PlainText::head(qsizetype length) const {
    return PlainText{bytes.left(length), isLatin1, hasCanonicalLineEnds}.decoded();
}

}  // namespace mosswick
