// A second-generation hierarchy of keys for each curve, made for tests: previous root, root, Member State,
// card. The private keys follow from names published here and protect nothing; the key identifiers carry the
// additional information 54 4B, which no real key has.
#pragma once

#include "EcKey.h"
#include "TestPki.h"

namespace sim {

/// Equipment types in the certificate holder authorisation.
enum class EquipmentG2 : std::uint8_t
{
    DriverCard = 0x01,
    WorkshopCard = 0x02,
    ControlCard = 0x03,
    CompanyCard = 0x04,
    DriverCardSign = 0x11,
    WorkshopCardSign = 0x12,
    Root = 0x0D,
    MemberState = 0x0E
};

struct CertificateFieldsG2
{
    /// 8 bytes: key identifier of the issuer.
    Bytes authority;
    EquipmentG2 equipment = EquipmentG2::DriverCard;
    Curve curve = Curve::NistP256;
    /// 04, x, y
    Bytes publicPoint;
    /// 8 bytes: key identifier of the holder.
    Bytes holder;
    /// TimeReal
    std::uint32_t effective = 0;
    std::uint32_t expires = 0;
};

/// The card-verifiable certificate, signed by `issuer`. Throws std::invalid_argument for fields of another
/// length.
Bytes makeCertificateG2(const EcKey& issuer, const CertificateFieldsG2& fields);

/// Self-signed; the anchor of all certificates of this curve.
Bytes rootCertificateG2(Curve curve);
/// Self-signed; of the root that was there before.
Bytes previousRootCertificateG2(Curve curve);
/// EF_Link_Certificate: the root's key, certified by the root before.
Bytes linkCertificateG2(Curve curve);

/// EF_CA_Certificate: the Member State key that certifies the nation's cards of a year.
Bytes caCertificateG2(Curve curve, std::uint8_t nation, int year);

/// What the certificates of a card have in common.
struct CardHolder
{
    std::uint8_t nation = 0;
    /// Extended serial number of EF_ICC.
    Bytes serialNumber;
    /// TimeReal: the day of issue, and the end of the card.
    std::uint32_t issued = 0;
    std::uint32_t expires = 0;
    Equipment equipment = Equipment::Driver;
};

/// Driver and workshop cards have a key to sign their EFs with, control and company cards have none.
bool signsG2(Equipment equipment);

/// EF_CardMA_Certificate: the key of the mutual authentication.
Bytes cardMaCertificateG2(Curve curve, const CardHolder& holder);
/// EF_CardSignCertificate: the key that signs the EFs, valid for a month longer than the card. Throws
/// std::invalid_argument for a card that has none.
Bytes cardSignCertificateG2(Curve curve, const CardHolder& holder);

/// Signs with the key of cardSignCertificateG2(); always the same object for a curve.
std::shared_ptr<const Signer> cardSignerG2(Curve curve);

} // namespace sim
