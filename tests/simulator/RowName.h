// Names of table-driven tests: what the row calls itself.
#pragma once

#include "Curve.h"

#include <gtest/gtest.h>
#include <string>

struct RowName
{
    template <typename Row>
    std::string operator()(const testing::TestParamInfo<Row>& tested) const
    {
        return tested.param.name;
    }
};

inline std::string curveName(const testing::TestParamInfo<sim::CurveDescription>& tested)
{
    return tested.param.groupName;
}
