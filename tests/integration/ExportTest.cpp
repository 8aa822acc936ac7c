// The exported constructor and destructor of SecurityManagerInterface, as a host's own security manager calls them: on
// an object whose table is read through the object. Clang has the constructor only in the form that derived classes
// call, C2.
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

TEST(ExportTest, TheDestructorLeavesTheInterfacesTableWithItsOneImplementedOperation)
{
    Dl_info library{};
    ASSERT_NE(dladdr(Entry("_ZN24SecurityManagerInterfaceC2Ev"), &library), 0);
    EXPECT_THAT(library.dli_fname, testing::HasSubstr(MODULE_FILE));

    void** object = nullptr; // of one word, for its table
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
