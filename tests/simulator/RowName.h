// Names of table-driven tests: what the row calls itself.
#pragma once

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
