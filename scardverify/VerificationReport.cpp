#include <scardverify/VerificationReport.h>

#include <algorithm>

namespace scard::verify {

int ApplicationReport::count(SignatureVerdict signature) const
{
    return static_cast<int>(
        std::count_if(records.begin(), records.end(), [signature](const RecordReport& each) {
            return each.signature == signature;
        }));
}

int ApplicationReport::signedRecords() const
{
    return static_cast<int>(records.size()) - count(SignatureVerdict::NotSigned);
}

bool ApplicationReport::signaturesHold() const
{
    const int valid = count(SignatureVerdict::Valid);
    return valid > 0 && valid == signedRecords();
}

} // namespace scard::verify
