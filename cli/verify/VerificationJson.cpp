#include "VerificationJson.h"

#include "../CardNames.h"
#include "../ImageFile.h"
#include "../JsonValues.h"
#include "VerificationWords.h"

#include <scard/ElementaryFile.h>

#include <QJsonArray>

using namespace scard::verify;

namespace {

QString keyOf(Word word)
{
    return QString::fromLatin1(word.key);
}

QJsonValue identifierOrNull(const QByteArray& identifier)
{
    return textOrNull(QString::fromLatin1(identifier.toHex().toUpper()));
}

/// The keys that say which EF something is about.
QJsonObject efJson(unsigned short fid, Generation generation)
{
    return {
        {"fid", fid == 0 ? QJsonValue() : QJsonValue(fidText(fid))},
        {"ef", textOrNull(scard::efName(fid, generation == Generation::Second))},
    };
}

QJsonObject certificateJson(const CertificateReport& certificate, Generation generation)
{
    QJsonObject json = efJson(certificate.fid, generation);
    json["key_of"] = keyOf(wordFor(certificate.role));
    json["verdict"] = keyOf(wordFor(certificate.verdict));
    json["holder"] = identifierOrNull(certificate.holder);
    json["issuer"] = identifierOrNull(certificate.issuer);
    json["authorisation"] = identifierOrNull(certificate.authorisation);
    json["algorithm"] = textOrNull(certificate.algorithm);
    json["valid_from"] = timeOrNull(certificate.validFrom);
    json["valid_until"] = timeOrNull(certificate.validUntil);
    return json;
}

QJsonObject recordJson(const RecordReport& record, Generation generation)
{
    QJsonObject json = efJson(record.fid, generation);
    json["offset"] = record.offset;
    json["size_bytes"] = record.length;
    json["signature_size_bytes"] = record.signatureLength;
    json["signature"] = keyOf(wordFor(record.signature));
    return json;
}

/// @param application null for a finding about the file as a whole
QJsonObject findingJson(const Finding& finding, const ApplicationReport* application)
{
    QJsonObject json =
        efJson(finding.fid, application != nullptr ? application->generation : Generation::First);
    json["code"] = static_cast<int>(finding.code);
    json["name"] = QString::fromLatin1(findingKey(finding.code));
    json["severity"] = keyOf(wordFor(finding.severity));
    json["generation"] =
        application != nullptr ? QJsonValue(static_cast<int>(application->generation)) : QJsonValue();
    json["offset"] = finding.offset < 0 ? QJsonValue() : QJsonValue(finding.offset);
    json["text"] = finding.text;
    return json;
}

QJsonObject applicationJson(const ApplicationReport& application)
{
    QJsonArray chain;
    for (const CertificateReport& each : application.chain)
        chain.append(certificateJson(each, application.generation));
    QJsonArray records;
    for (const RecordReport& each : application.records)
        records.append(recordJson(each, application.generation));
    const auto type = static_cast<scard::SCardMeta::Type>(application.cardType);
    return {
        {"generation", static_cast<int>(application.generation)},
        {"verdict", keyOf(wordFor(application.verdict))},
        {"card_type",
         application.cardType == 0
             ? QJsonValue()
             : QJsonValue(QJsonObject{{"code", application.cardType}, {"name", cardTypeName(type)}})},
        {"chain", chain},
        {"records", records},
    };
}

QJsonObject fileJson(const VerifiedFile& file)
{
    const Verification& verification = file.verification;
    QJsonArray applications;
    for (const ApplicationReport& each : verification.report.applications)
        applications.append(applicationJson(each));
    QJsonArray uncovered;
    for (const UncoveredPart& each : verification.report.uncovered) {
        QJsonObject part = efJson(each.fid, each.generation);
        part["generation"] = static_cast<int>(each.generation);
        part["offset"] = each.offset;
        part["size_bytes"] = each.length;
        uncovered.append(part);
    }
    QJsonObject json = verdictJson(verification);
    json["file"] = QJsonObject{{"path", file.path}, {"size_bytes", file.size}, {"sha256", file.sha256}};
    json["downloaded_at"] = timeOrNull(verification.downloadedAt);
    json["applications"] = applications;
    json["uncovered"] = uncovered;
    return json;
}

} // namespace

QJsonObject verificationsJson(const std::vector<VerifiedFile>& files)
{
    QJsonArray downloads;
    for (const VerifiedFile& each : files)
        downloads.append(fileJson(each));
    return {{"format", "scard-verify-1"}, {"downloads", downloads}};
}

QJsonObject verdictJson(const Verification& verification)
{
    QJsonArray findings;
    for (const Finding& each : verification.report.findings)
        findings.append(findingJson(each, nullptr));
    for (const ApplicationReport& application : verification.report.applications) {
        for (const Finding& each : application.findings)
            findings.append(findingJson(each, &application));
    }
    return {
        {"verdict", keyOf(wordFor(verification.report.verdict))},
        {"sentence", verdictSentence(verification)},
        {"signatures",
         QJsonObject{
             {"expected", verification.expected},
             {"valid", verification.valid},
             {"unchecked", verification.unchecked}}},
        {"findings", findings},
    };
}
