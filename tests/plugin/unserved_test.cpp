// The shipped file in a process that has none of the agent's services.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <fstream>

TEST(ShippedFile, TellsEvenALazyHostAtOnceWhichServiceIsMissing) {
    EXPECT_EQ(dlopen(PLUGIN_FILE, RTLD_LAZY), nullptr);
    const char* error = dlerror();
    const std::string text = error != nullptr ? error : "";
    const std::string before = "undefined symbol: ";
    const size_t start = text.find(before);
    ASSERT_NE(start, std::string::npos) << text;

    std::ifstream services(SERVICES_FILE);
    std::string service;
    while (service != text.substr(start + before.size()) && std::getline(services, service)) {
    }
    EXPECT_TRUE(services) << text;
}
