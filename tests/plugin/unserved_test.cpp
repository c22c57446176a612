// The shipped file in a process that has none of the agent's services.
#include <dlfcn.h>
#include <gtest/gtest.h>

TEST(ShippedFile, TellsEvenALazyHostAtOnceThatAServiceIsMissing) {
    ASSERT_EQ(dlopen(PLUGIN_FILE, RTLD_LAZY), nullptr);
    const std::string error = dlerror();
    EXPECT_NE(error.find("undefined symbol: "), std::string::npos) << error;
}
