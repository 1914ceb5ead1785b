// What a piece of code prints on the console, for the tests of messages.
#pragma once
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

template <class F>
std::string sortie_de(F f) {
  testing::internal::CaptureStdout();
  f();
  std::fflush(stdout);
  return testing::internal::GetCapturedStdout();
}
