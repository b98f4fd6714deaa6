// Tells whether a download is genuine: verify_image FILE ROOT_KEY_FILE …
#include <scardverify/VerifyImage.h>

#include <QFile>
#include <QTextStream>

namespace {

QTextStream out(stdout);

QByteArray bytesOf(const char* name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

//! [verdict]
const char* textOf(scard::verify::Verdict verdict)
{
    switch (verdict) {
    case scard::verify::Verdict::Genuine:
        return "genuine";
    case scard::verify::Verdict::RootUnknown:
        return "consistent, but signed under a root key that was not given";
    case scard::verify::Verdict::Unproven:
        return "unproven";
    case scard::verify::Verdict::Altered:
        break;
    }
    return "altered";
}
//! [verdict]

} // namespace

int main(int argc, char* argv[])
{
    //! [roots]
    std::vector<scard::verify::RootKey> roots;
    for (int i = 2; i < argc; ++i) {
        const scard::verify::RootKeyResult root = scard::verify::readRootKey(bytesOf(argv[i]));
        if (!root.key) {
            out << argv[i] << " holds no root key: " << root.reason << Qt::endl;
            return 2;
        }
        roots.push_back(*root.key);
    }
    //! [roots]
    //! [verify]
    const QByteArray image = bytesOf(argc > 1 ? argv[1] : "");
    const scard::verify::VerificationReport report = scard::verify::verifyImage(image, roots);
    out << "Verdict: " << textOf(report.verdict) << Qt::endl;
    for (const scard::verify::Finding& finding : report.findings)
        out << "  " << finding.text << Qt::endl;
    for (const scard::verify::ApplicationReport& application : report.applications) {
        out << "Generation " << static_cast<int>(application.generation) << ": "
            << application.count(scard::verify::SignatureVerdict::Valid) << " of "
            << application.signedRecords() << " signatures hold" << Qt::endl;
        for (const scard::verify::Finding& finding : application.findings)
            out << "  " << finding.text << Qt::endl;
    }
    //! [verify]
    return report.verdict == scard::verify::Verdict::Genuine ? 0 : 1;
}
