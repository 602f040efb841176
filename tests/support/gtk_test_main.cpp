// Entry of every GTK test executable: a private display, then the cases.
#include <gtest/gtest.h>

#include "support/xvfb.h"

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  ::testing::AddGlobalTestEnvironment(new testsupport::XvfbEnvironment);
  return RUN_ALL_TESTS();
}
