// A first-generation key hierarchy of the simulator's own (Annex 1B, Appendix 11): root, Member State, card.
// The private keys are published with this source and protect nothing; their key identifiers carry the
// additional information 54 4B, which no real key has.
#pragma once

#include "CardDescription.h"
#include "RsaKey.h"

namespace sim {

/// EquipmentType in certificates, card numbers, serial numbers and seals.
enum class Equipment : std::uint8_t
{
    MemberState = 0,
    Driver = 1,
    Workshop = 2,
    Control = 3,
    Company = 4,
    VehicleUnit = 6,
    MotionSensor = 7,
    // Second generation only.
    GnssFacility = 8,
    RemoteModule = 9,
    Plaque = 11
};

struct CertificateFieldsG1
{
    /// 8 bytes: key identifier of the issuer.
    Bytes authority;
    Equipment equipment = Equipment::Driver;
    /// TimeReal; FFFFFFFF = no end.
    std::uint32_t endOfValidity = 0xFFFFFFFF;
    /// 8 bytes: key identifier of the holder.
    Bytes holder;
    /// 128 and 8 bytes.
    Bytes modulus;
    Bytes exponent;
};

/// The 194 bytes of a certificate: signature with message recovery by `issuer`, rest of the content,
/// authority. Throws std::invalid_argument for fields of another length.
Bytes makeCertificateG1(const RsaKey& issuer, const CertificateFieldsG1& fields);

const RsaKey& rootPrivateKeyG1();
const RsaKey& memberStatePrivateKeyG1();
const RsaKey& cardPrivateKeyG1();

/// Bytes of a key identifier, in either generation.
constexpr std::size_t KeyIdLength = 8;
/// NationNumeric of the European authority.
constexpr std::uint8_t RootNation = 0xFD;
/// Throws std::invalid_argument unless the field of a certificate has this length.
void requireFieldLength(const Bytes& field, std::size_t length);

/// What a verifier needs: 144 bytes, key identifier 8, modulus 128, exponent 8.
Bytes rootKeyG1();
/// Key identifier of an authority, marked as that of a test key in either generation.
Bytes testKeyId(std::uint8_t nation, std::string alpha, std::uint32_t serial);
/// Key identifier of the simulated authority of a nation (NationNumeric).
Bytes memberStateIdG1(std::uint8_t nation);

/// EF_CA_Certificate of the nation's cards: the Member State key, certified by the root.
Bytes caCertificateG1(std::uint8_t nation);
/// EF_Card_Certificate: the card key, certified by the Member State. `extendedSerialNumber` is that of
/// EF_ICC.
Bytes cardCertificateG1(
    std::uint8_t nation, Equipment equipment, const Bytes& extendedSerialNumber, std::uint32_t endOfValidity);

/// Signs with the key of cardCertificateG1(); always the same object.
std::shared_ptr<const Signer> cardSignerG1();

} // namespace sim
