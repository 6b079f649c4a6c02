#pragma once

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <memory>

namespace zento::test {

/// Calls that are posted need an application; it lives as long as the tests run:
///
///     const auto* const kEnvironment = testing::AddGlobalTestEnvironment(new QtEnvironment);
class QtEnvironment : public testing::Environment {
public:
    void SetUp() override
    {
        static int count = 1;
        static char name[] = "tests";               // NOLINT(modernize-avoid-c-arrays): argv
        static char* arguments[] = {name, nullptr}; // NOLINT(modernize-avoid-c-arrays)
        m_application = std::make_unique<QCoreApplication>(count, arguments);
    }
    void TearDown() override { m_application.reset(); }

private:
    std::unique_ptr<QCoreApplication> m_application;
};

} // namespace zento::test
