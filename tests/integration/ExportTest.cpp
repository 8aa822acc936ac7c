// Calls the exported constructor and destructor of SecurityManagerInterface as a host's own security manager does, and
// reads the virtual table of the object. The constructor is called in the form for derived classes (C2), because Clang
// has no other for an abstract class.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <array>

namespace {

void* Entry(const char* name)
{
    return dlsym(RTLD_DEFAULT, name);
}

void Call(const char* name, void* object)
{
    reinterpret_cast<void (*)(void*)>(Entry(name))(object);
}

TEST(ExportTest, TheDestructorPutsBackTheTableOfTheInterface)
{
    Dl_info library{};
    ASSERT_NE(dladdr(Entry("_ZN24SecurityManagerInterfaceC2Ev"), &library), 0);
    EXPECT_THAT(library.dli_fname, testing::HasSubstr(MODULE_FILE));

    void** object = nullptr; // an object holds only the address of its table
    Call("_ZN24SecurityManagerInterfaceC2Ev", &object);
    void** const table = object;
    std::array<void*, 9> ofDerived{};
    object = ofDerived.data();
    Call("_ZN24SecurityManagerInterfaceD1Ev", &object);
    EXPECT_EQ(object, table);

    for (std::size_t operation = 0; operation < 7; ++operation) {
        EXPECT_EQ(table[operation], Entry("__cxa_pure_virtual")) << operation;
    }
    EXPECT_EQ(table[7], Entry("_ZN24SecurityManagerInterfaceD1Ev"));
    EXPECT_EQ(table[8], Entry("_ZN24SecurityManagerInterfaceD0Ev"));
}

} // namespace
