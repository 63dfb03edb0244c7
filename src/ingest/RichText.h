#pragma once

#include <QByteArray>
#include <QString>

namespace mosswick {

// The plain text of what programs offer only as formatted text, so a drop or clipboard holding
// nothing else still becomes a text item. Formatting is dropped; paragraphs become line breaks.
namespace RichText {

// HTML in the encoding its byte-order mark or meta tag names, else UTF-8.
QString fromHtml(const QByteArray& html);
// RTF: the text of the document body, its \uN characters and \'hh bytes (Windows-1252) decoded;
// font tables, pictures and other destinations skipped.
QString fromRtf(const QByteArray& rtf);

}  // namespace RichText
}  // namespace mosswick
