#include "HtmlText.h"

#include "../Console.h"

namespace report {

QString htmlText(const QString& text)
{
    // The apostrophe is what toHtmlEscaped() leaves.
    return printable(text).toHtmlEscaped().replace(QLatin1Char('\''), QLatin1String("&#39;"));
}

} // namespace report
