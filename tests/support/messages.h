#pragma once

#include <concepts>
#include <exception>
#include <gtest/gtest.h>
#include <string>

#include <corvel/exmsg.h>

/// The text of the error of that class in which the operation ends; empty when it ends in none.
template <std::derived_from<Qexmsg> Error, typename Operation>
std::string messageOf(const Operation& operation) {
    try {
        operation();
        return "";
    } catch (const Error& error) {
        if constexpr (std::derived_from<Error, std::exception>) {
            EXPECT_STREQ(error.what(), error.why());
        }
        return error.why();
    }
}
