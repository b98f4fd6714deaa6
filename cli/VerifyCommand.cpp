#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "ImageFile.h"
#include "ReadFile.h"
#include "verify/RootKeys.h"
#include "verify/VerificationJson.h"
#include "verify/VerificationText.h"

#include <QJsonDocument>

#include <algorithm>

namespace {

void write(const std::vector<VerifiedFile>& files, bool asJson)
{
    if (asJson) {
        out().setCodec("UTF-8");
        out() << QJsonDocument(verificationsJson(files)).toJson(QJsonDocument::Compact) << '\n';
        return;
    }
    for (const VerifiedFile& each : files) {
        if (&each != &files.front())
            out() << '\n';
        writeVerification(out(), each);
    }
}

} // namespace

ExitCode runVerify(const QStringList& arguments)
{
    Arguments options(
        QStringLiteral("scard verify"),
        QStringLiteral(
            "Tells whether downloads are genuine: the signature behind each EF, and the certificates up to "
            "a root key."));
    RootKeys::add(options);
    options.addFlag(QStringLiteral("json"), QStringLiteral("As JSON, with everything that is known."));
    options.addPositional(QStringLiteral("FILE..."), QStringLiteral("Downloads of cards."));
    if (const std::optional<ExitCode> end = options.read(arguments))
        return *end;
    if (options.positional().isEmpty())
        return options.usageError(QStringLiteral("no file given."));
    std::vector<scard::verify::RootKey> roots;
    if (const std::optional<ExitCode> end = RootKeys::read(options, roots))
        return *end;

    ExitCode code = exitDone;
    std::vector<VerifiedFile> files;
    std::vector<FileBytes> unreadable;
    for (const QString& path : options.positional()) {
        const FileBytes input = readFile(path);
        code = std::max(code, input.code);
        if (!input.message.isEmpty()) {
            unreadable.push_back(input);
            continue;
        }
        files.push_back(
            {path, input.bytes.size(), imageFileOf(input.bytes).sha256(),
             verificationOf(path, input.bytes, roots)});
        const scard::verify::VerificationReport& report = files.back().verification.report;
        code = std::max(code, report.applications.empty() ? exitDamagedFile : exitCodeOf(report.verdict));
    }
    write(files, options.isSet(QStringLiteral("json")));
    code = finishOutput(code);
    for (const FileBytes& each : unreadable)
        err() << "scard: " << printable(each.message) << '\n' << each.advice << Qt::endl;
    return code;
}
