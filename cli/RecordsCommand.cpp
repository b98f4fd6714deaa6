#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "ImageFile.h"
#include "ReadFile.h"

#include <algorithm>

namespace {

QString typeText(const ImageRecord& record)
{
    if (!record.hasKnownType())
        return QStringLiteral("unknown type %1")
            .arg(paddedHexadecimal(static_cast<unsigned int>(record.header.type), 2));
    return QStringLiteral("%1, generation %2")
        .arg(record.isSignature() ? QStringLiteral("signature") : QStringLiteral("data"))
        .arg(record.isSecondGeneration() ? 2 : 1);
}

void print(const ImageFile& file)
{
    out() << "  offset  FID   EF                                 record                   bytes\n";
    for (const ImageRecord& record : file.records) {
        const QString name = record.efName().isEmpty() ? QStringLiteral("unknown EF") : record.efName();
        out() << QString::number(record.offset).rightJustified(8) << "  " << fidText(record.header.fid)
              << "  " << name.leftJustified(33) << "  " << typeText(record).leftJustified(23) << "  "
              << QString::number(record.header.length).rightJustified(5);
        if (record.isWhole())
            out() << "  whole\n";
        else
            out() << "  cut, " << record.available << " are there\n";
    }
    out() << file.records.size() << " records, " << file.signatures() << " signatures, " << file.bytes.size()
          << " bytes, " << file.trailing << " behind the last record\n"
          << "SHA-256 " << file.sha256() << '\n';
}

} // namespace

ExitCode runRecords(const QStringList& arguments)
{
    Arguments options(
        QStringLiteral("scard records"),
        QStringLiteral(
            "Lists the records of a download as they stand in the file, also of a damaged one: offset, "
            "number and name of the EF, type, length, whether it is whole, and what is left behind."));
    options.addPositional(QStringLiteral("FILE"), QStringLiteral("A download of a card."));
    if (const std::optional<ExitCode> end = options.read(arguments))
        return *end;
    if (options.positional().size() != 1)
        return options.usageError(QStringLiteral("one file is wanted."));
    const QString path = options.positional().front();
    const FileBytes input = readFile(path);
    if (!input.message.isEmpty()) {
        err() << "scard: " << printable(input.message) << '\n' << input.advice << Qt::endl;
        return input.code;
    }
    const ImageFile file = imageFileOf(input.bytes);
    print(file);
    const bool isDownload =
        std::any_of(file.records.begin(), file.records.end(), [](const ImageRecord& record) {
            return record.hasKnownType() && !record.efName().isEmpty();
        });
    if (isDownload && !file.isCut())
        return finishOutput(exitDone);
    out().flush();
    err() << "scard: " << printable(path)
          << (file.isCut() ? " is damaged: it ends inside a record." : " has no record of a tachograph card.")
          << Qt::endl;
    return finishOutput(exitDamagedFile);
}
