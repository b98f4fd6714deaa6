#pragma once

#include <scardverify/RootKey.h>
#include <simulator/Curve.h>

#include <QByteArray>

#include <vector>

// The root keys of the simulated cards, as files.

namespace test {

QByteArray rootFileG1();
QByteArray rootFileG2(sim::Curve curve = sim::Curve::NistP256);

/// Of the root before, which signs EF_Link_Certificate.
QByteArray previousRootFileG2(sim::Curve curve = sim::Curve::NistP256);

/// Of a root of the first generation that certified none of the cards.
QByteArray otherRootFileG1();

/// The keys in these files; the test fails for a file without one.
std::vector<scard::verify::RootKey> rootsIn(const std::vector<QByteArray>& files);

/// Those of both generations.
std::vector<scard::verify::RootKey> roots(sim::Curve curve = sim::Curve::NistP256);

/// The same, and the one before: with these nothing is left to say of a simulated card.
const std::vector<scard::verify::RootKey>& allRoots();

} // namespace test
