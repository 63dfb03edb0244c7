#include "ingest/RichText.h"

#include <QStringDecoder>
#include <QTextDocumentFragment>
#include <cctype>
#include <vector>

namespace mosswick::RichText {

QString fromHtml(const QByteArray& html) {
    QStringDecoder decoder = QStringDecoder::decoderForHtml(html);
    const QString text = decoder.isValid() ? decoder.decode(html) : QString::fromUtf8(html);
    return QTextDocumentFragment::fromHtml(text).toPlainText();
}

namespace {

// Groups whose content is not part of the document's text.
bool isSkippedDestination(const QByteArray& word) {
    static const char* const skipped[] = {"fonttbl",   "colortbl",     "stylesheet", "info",
                                          "pict",      "header",       "footer",     "themedata",
                                          "datastore", "latentstyles", "listtable",  "listoverridetable",
                                          "rsidtbl",   "generator",    "xmlnstbl"};
    for (const char* name : skipped)
        if (word == name) return true;
    return false;
}

class RtfReader {
public:
    explicit RtfReader(const QByteArray& rtf) : rtf_(rtf) {}

    QString text() {
        groups_.push_back({false, 1});
        while (at_ < rtf_.size()) {
            const char c = rtf_.at(at_++);
            if (c == '{') {
                groups_.push_back(groups_.back());
                startOfGroup_ = true;
                continue;
            }
            if (c == '}') {
                if (groups_.size() > 1) groups_.pop_back();
                startOfGroup_ = false;
                continue;
            }
            const bool groupStart = startOfGroup_;
            startOfGroup_ = false;
            if (c == '\\') {
                control(groupStart);
            } else if (c != '\r' && c != '\n') {
                put(QChar::fromLatin1(c));
            }
        }
        return out_;
    }

private:
    struct Group {
        bool skipped;
        int unicodeSkip;  // characters standing in for each \uN in readers without Unicode
    };

    void put(QChar c) {
        if (pendingSkip_ > 0) {
            --pendingSkip_;
            return;
        }
        if (!groups_.back().skipped) out_ += c;
    }

    void control(bool groupStart) {
        if (at_ >= rtf_.size()) return;
        const char c = rtf_.at(at_);
        if (!std::isalpha(static_cast<unsigned char>(c))) {
            ++at_;
            if (c == '\'') {
                const int byte = rtf_.mid(at_, 2).toInt(nullptr, 16);
                at_ += 2;
                put(fromWindows1252(static_cast<char>(byte)));
            } else if (c == '*') {
                if (groupStart) groups_.back().skipped = true;
            } else if (c == '~') {
                put(QChar(0x00A0));
            } else if (c == '\\' || c == '{' || c == '}') {
                put(QChar::fromLatin1(c));
            } else if (c == '\n' || c == '\r') {
                put(QLatin1Char('\n'));
            }
            return;
        }
        const qsizetype start = at_;
        while (at_ < rtf_.size() && std::isalpha(static_cast<unsigned char>(rtf_.at(at_)))) ++at_;
        const QByteArray word = rtf_.mid(start, at_ - start);
        const qsizetype numberStart = at_;
        if (at_ < rtf_.size() && rtf_.at(at_) == '-') ++at_;
        while (at_ < rtf_.size() && std::isdigit(static_cast<unsigned char>(rtf_.at(at_)))) ++at_;
        const bool hasNumber = at_ > numberStart;
        const int number = hasNumber ? rtf_.mid(numberStart, at_ - numberStart).toInt() : 0;
        if (at_ < rtf_.size() && rtf_.at(at_) == ' ') ++at_;

        if (groupStart && isSkippedDestination(word)) {
            groups_.back().skipped = true;
        } else if (word == "par" || word == "line" || word == "row") {
            put(QLatin1Char('\n'));
        } else if (word == "tab" || word == "cell") {
            put(QLatin1Char('\t'));
        } else if (word == "uc" && hasNumber) {
            groups_.back().unicodeSkip = number;
        } else if (word == "u" && hasNumber) {
            // Negative for code points past 32767, which RTF writes as signed 16-bit numbers.
            const auto unit = static_cast<char16_t>(number < 0 ? number + 65536 : number);
            put(QChar(unit));
            pendingSkip_ = groups_.back().unicodeSkip;
        }
    }

    // Latin-1 but for 0x80-0x9F, where Windows put its quotes, dashes and the euro.
    static QChar fromWindows1252(char byte) {
        static const char16_t high[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                          0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                          0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                          0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
        const auto value = static_cast<unsigned char>(byte);
        return value >= 0x80 && value < 0xA0 ? QChar(high[value - 0x80]) : QChar::fromLatin1(byte);
    }

    const QByteArray& rtf_;
    qsizetype at_ = 0;
    std::vector<Group> groups_;
    bool startOfGroup_ = false;
    int pendingSkip_ = 0;
    QString out_;
};

}  // namespace

QString fromRtf(const QByteArray& rtf) { return RtfReader(rtf).text(); }

}  // namespace mosswick::RichText
