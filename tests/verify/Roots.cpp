#include "Roots.h"

#include "Image.h"
#include "OtherCard.h"

#include <simulator/TestPki.h>
#include <simulator/TestPkiG2.h>

#include <gtest/gtest.h>

namespace test {

using scard::verify::RootKey;

QByteArray rootFileG1()
{
    return arrayOf(sim::rootKeyG1());
}

QByteArray rootFileG2(sim::Curve curve)
{
    return arrayOf(sim::rootCertificateG2(curve));
}

QByteArray previousRootFileG2(sim::Curve curve)
{
    return arrayOf(sim::previousRootCertificateG2(curve));
}

QByteArray otherRootFileG1()
{
    const sim::RsaKey& key = otherRsaKey();
    return arrayOf(sim::testKeyId(sim::RootNation, "EC", 9)) + arrayOf(key.modulus()) +
           arrayOf(key.exponent());
}

std::vector<RootKey> rootsIn(const std::vector<QByteArray>& files)
{
    std::vector<RootKey> keys;
    for (const QByteArray& file : files) {
        const auto result = scard::verify::readRootKey(file);
        if (result.key)
            keys.push_back(*result.key);
        else
            ADD_FAILURE() << result.reason.toStdString();
    }
    return keys;
}

std::vector<RootKey> roots(sim::Curve curve)
{
    return rootsIn({rootFileG1(), rootFileG2(curve)});
}

const std::vector<RootKey>& allRoots()
{
    static const std::vector<RootKey> keys = rootsIn({rootFileG1(), rootFileG2(), previousRootFileG2()});
    return keys;
}

} // namespace test
