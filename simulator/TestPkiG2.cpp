#include "TestPkiG2.h"

#include "CardDescription.h"
#include "Nations.h"
#include "TestPki.h"
#include "TimeReal.h"

#include <algorithm>

namespace sim {

namespace {

constexpr std::uint32_t TagCertificate = 0x7F21;
constexpr std::uint32_t TagBody = 0x7F4E;
constexpr std::uint32_t TagProfile = 0x5F29;
constexpr std::uint32_t TagAuthority = 0x42;
constexpr std::uint32_t TagAuthorisation = 0x5F4C;
constexpr std::uint32_t TagPublicKey = 0x7F49;
constexpr std::uint32_t TagCurve = 0x06;
constexpr std::uint32_t TagPoint = 0x86;
constexpr std::uint32_t TagHolder = 0x5F20;
constexpr std::uint32_t TagEffective = 0x5F25;
constexpr std::uint32_t TagExpires = 0x5F24;
constexpr std::uint32_t TagSignature = 0x5F37;

constexpr Date PreviousRootDate = {2003, 6, 1};
constexpr Date RootDate = {2015, 6, 1};

// Annex 1C, Appendix 11: validity of certificates in months.
constexpr int RootMonths = 34 * 12 + 3;
constexpr int LinkMonths = 17 * 12 + 3;
constexpr int MemberStateMonths = 7 * 12 + 1;

/// Tag, length in the fewest bytes (DER), value.
void appendObject(Bytes& to, std::uint32_t tag, const Bytes& value)
{
    if (tag > 0xFF) {
        appendU16(to, tag);
    } else {
        appendU8(to, tag);
    }
    const auto length = static_cast<std::uint32_t>(value.size());
    if (length > 0xFF) {
        appendU8(to, 0x82);
        appendU16(to, length);
    } else {
        if (length > 0x7F) {
            appendU8(to, 0x81);
        }
        appendU8(to, length);
    }
    appendBytes(to, value);
}

Bytes timeReal(std::uint32_t time)
{
    Bytes bytes;
    appendU32(bytes, time);
    return bytes;
}

/// The last second before the same day `months` later.
std::uint32_t endAfter(std::uint32_t begin, int months)
{
    Date date = dateOf(begin);
    const int month = date.month - 1 + months;
    date.year += month / 12;
    date.month = month % 12 + 1;
    date.day = std::min(date.day, 28);
    return timeOf(date) - 1;
}

/// One key for each curve, all with the same name.
class KeyRing
{
  public:
    explicit KeyRing(const std::string& label)
    {
        for (const CurveDescription& row : curves()) {
            m_keys.push_back(EcKey::fromLabel(row.curve, label));
        }
    }

    const EcKey& of(Curve curve) const { return m_keys.at(static_cast<std::size_t>(curve)); }

  private:
    std::vector<EcKey> m_keys;
};

// Test keys. Never trust anything signed with them.
const EcKey& previousRootKey(Curve curve)
{
    static const KeyRing ring("test key of the previous root");
    return ring.of(curve);
}

const EcKey& rootKey(Curve curve)
{
    static const KeyRing ring("test key of the root");
    return ring.of(curve);
}

const EcKey& memberStateKey(Curve curve)
{
    static const KeyRing ring("test key of a Member State");
    return ring.of(curve);
}

const EcKey& cardMaKey(Curve curve)
{
    static const KeyRing ring("test key of a card for mutual authentication");
    return ring.of(curve);
}

const EcKey& cardSignKey(Curve curve)
{
    static const KeyRing ring("test key of a card for signatures");
    return ring.of(curve);
}

/// So that each key of the hierarchy has a number of its own; the first generation has 0 and 1.
std::uint32_t keySerial(std::uint32_t role, Curve curve)
{
    return 16 * role + static_cast<std::uint32_t>(curve);
}

Bytes previousRootId(Curve curve)
{
    return testKeyId(RootNation, nationAlpha(RootNation), keySerial(1, curve));
}

Bytes rootId(Curve curve)
{
    return testKeyId(RootNation, nationAlpha(RootNation), keySerial(2, curve));
}

Bytes memberStateId(Curve curve, std::uint8_t nation)
{
    return testKeyId(nation, nationAlpha(nation), keySerial(3, curve));
}

CertificateFieldsG2 fieldsFor(const EcKey& key, EquipmentG2 equipment, const Bytes& holder)
{
    CertificateFieldsG2 fields;
    fields.equipment = equipment;
    fields.curve = key.curve();
    fields.publicPoint = key.publicPoint();
    fields.holder = holder;
    return fields;
}

Bytes selfSigned(const EcKey& key, const Bytes& id, const Date& date)
{
    CertificateFieldsG2 fields = fieldsFor(key, EquipmentG2::Root, id);
    fields.authority = id;
    fields.effective = timeOf(date);
    fields.expires = endAfter(fields.effective, RootMonths);
    return makeCertificateG2(key, fields);
}

Bytes cardCertificate(
    const EcKey& key, EquipmentG2 equipment, const CardHolder& holder, std::uint32_t expires)
{
    CertificateFieldsG2 fields = fieldsFor(key, equipment, holder.serialNumber);
    fields.authority = memberStateId(key.curve(), holder.nation);
    fields.effective = holder.issued;
    fields.expires = expires;
    return makeCertificateG2(memberStateKey(key.curve()), fields);
}

} // namespace

Bytes makeCertificateG2(const EcKey& issuer, const CertificateFieldsG2& fields)
{
    const CurveDescription& curve = describe(fields.curve);
    requireFieldLength(fields.authority, KeyIdLength);
    requireFieldLength(fields.holder, KeyIdLength);
    requireFieldLength(fields.publicPoint, curve.pointLength());

    Bytes authorisation = AidG2;
    appendU8(authorisation, static_cast<std::uint32_t>(fields.equipment));
    Bytes publicKey;
    appendObject(publicKey, TagCurve, curve.oid);
    appendObject(publicKey, TagPoint, fields.publicPoint);

    Bytes content;
    appendObject(content, TagProfile, {0x00});
    appendObject(content, TagAuthority, fields.authority);
    appendObject(content, TagAuthorisation, authorisation);
    appendObject(content, TagPublicKey, publicKey);
    appendObject(content, TagHolder, fields.holder);
    appendObject(content, TagEffective, timeReal(fields.effective));
    appendObject(content, TagExpires, timeReal(fields.expires));

    // The signature covers the body with its tag and length.
    Bytes signedPart;
    appendObject(signedPart, TagBody, content);
    const Bytes signature = issuer.sign(signedPart);
    appendObject(signedPart, TagSignature, signature);
    Bytes certificate;
    appendObject(certificate, TagCertificate, signedPart);
    return certificate;
}

Bytes rootCertificateG2(Curve curve)
{
    return selfSigned(rootKey(curve), rootId(curve), RootDate);
}

Bytes previousRootCertificateG2(Curve curve)
{
    return selfSigned(previousRootKey(curve), previousRootId(curve), PreviousRootDate);
}

Bytes linkCertificateG2(Curve curve)
{
    CertificateFieldsG2 fields = fieldsFor(rootKey(curve), EquipmentG2::Root, rootId(curve));
    fields.authority = previousRootId(curve);
    fields.effective = timeOf(RootDate);
    fields.expires = endAfter(fields.effective, LinkMonths);
    return makeCertificateG2(previousRootKey(curve), fields);
}

Bytes caCertificateG2(Curve curve, std::uint8_t nation, int year)
{
    CertificateFieldsG2 fields =
        fieldsFor(memberStateKey(curve), EquipmentG2::MemberState, memberStateId(curve, nation));
    fields.authority = rootId(curve);
    fields.effective = timeOf({year, 1, 1});
    fields.expires = endAfter(fields.effective, MemberStateMonths);
    return makeCertificateG2(rootKey(curve), fields);
}

bool signsG2(Equipment equipment)
{
    return equipment == Equipment::Driver || equipment == Equipment::Workshop;
}

Bytes cardMaCertificateG2(Curve curve, const CardHolder& holder)
{
    // Both generations number the kinds of cards alike.
    const auto equipment = static_cast<EquipmentG2>(holder.equipment);
    return cardCertificate(cardMaKey(curve), equipment, holder, holder.expires);
}

Bytes cardSignCertificateG2(Curve curve, const CardHolder& holder)
{
    if (!signsG2(holder.equipment)) {
        throw std::invalid_argument("a card without a key for signatures");
    }
    const EquipmentG2 equipment =
        holder.equipment == Equipment::Driver ? EquipmentG2::DriverCardSign : EquipmentG2::WorkshopCardSign;
    return cardCertificate(cardSignKey(curve), equipment, holder, endAfter(holder.expires + 1, 1));
}

std::shared_ptr<const Signer> cardSignerG2(Curve curve)
{
    static const std::vector<std::shared_ptr<const Signer>> signers = [] {
        std::vector<std::shared_ptr<const Signer>> all;
        for (const CurveDescription& row : curves()) {
            all.push_back(std::make_shared<const EcSigner>(cardSignKey(row.curve)));
        }
        return all;
    }();
    return signers.at(static_cast<std::size_t>(curve));
}

} // namespace sim
