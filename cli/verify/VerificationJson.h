#pragma once

#include "Verification.h"

#include <QJsonObject>

/// All of it, as docs/schema/verify.schema.json says.
QJsonObject verificationsJson(const std::vector<VerifiedFile>& files);

/// The verdict and its reasons, as the other JSON outputs have them.
QJsonObject verdictJson(const Verification& verification);
