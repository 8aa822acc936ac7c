// Hosts and tools are built against the order of virtual operations; changing it breaks them without a word.
#include "platform/security_manager/PermissionListInterface.h"
#include "platform/security_manager/SECM_CallBackInterface.h"
#include "tests/unit/ScriptedPlatform.h"

#include <algorithm>
#include <cstring>

namespace {

// The place of a virtual operation in its class's table, as this ABI keeps it in a pointer to member.
template <class Operation>
std::ptrdiff_t Slot(Operation operation)
{
    std::ptrdiff_t slot = 0;
    std::memcpy(&slot, &operation, sizeof slot);
    return slot / static_cast<std::ptrdiff_t>(sizeof(void*));
}

struct Steps : SECM_AccessControlManager {
    static std::vector<std::ptrdiff_t> Slots()
    {
        return {Slot(&Steps::InitSecurityConnection),
                Slot(static_cast<std::string (Steps::*)(const std::string&)>(&Steps::GetAccessControlFilter)),
                Slot(static_cast<std::string (Steps::*)(const std::string&, const std::string&)>(
                    &Steps::GetAccessControlFilter)),
                Slot(static_cast<std::string (Steps::*)(SecurityManagerInterface*)>(
                    &Steps::GetAccessControlFilter)),
                Slot(&Steps::GetValueMultiplicityDelimiter),
                Slot(&Steps::ReadConfigurations),
                Slot(&Steps::ClearFieldDefinitions),
                Slot(&Steps::SplitCommaList),
                Slot(&Steps::HandleSingleConditionForUser),
                Slot(&Steps::HandleSingleCondition),
                Slot(&Steps::ReplaceSingleValueForUser),
                Slot(&Steps::ReplaceSingleValue),
                Slot(&Steps::ResolveUserField),
                Slot(&Steps::ApplyValuesFunction),
                Slot(&Steps::RegisterValuesFunction),
                Slot(&Steps::CheckPermissionInList),
                Slot(&Steps::GetResourcesFromList)};
    }
};

TEST(LayoutTest, VirtualOperationsKeepTheirOrder)
{
    std::vector<std::ptrdiff_t> consecutive(Steps::Slots().size());
    for (std::size_t n = 0; n < consecutive.size(); ++n) {
        consecutive[n] = static_cast<std::ptrdiff_t>(n) + 2; // after the destructor's two
    }
    EXPECT_EQ(Steps::Slots(), consecutive);
    using Callback = SECM_CallBackInterface;
    EXPECT_THAT((std::vector{Slot(&Callback::GetApplicationName), Slot(&Callback::GetUserName),
                             Slot(&Callback::GetAuxiliaryText), Slot(&Callback::GetGroup),
                             Slot(&Callback::GetSecondGroup), Slot(&Callback::GetIpAddress)}),
                testing::ElementsAre(2, 3, 4, 5, 6, 7));
    using Values = AccessControl_ValuesFunctionInterface;
    EXPECT_THAT((std::vector{Slot(&Values::Initialize), Slot(&Values::MapValue)}),
                testing::ElementsAre(0, 1));
    EXPECT_EQ(Slot(&SecurityManagerInterface::GetUserDetails), 6);
    EXPECT_EQ(Slot(&PermissionListInterface::GetPermissions), 0);
}

} // namespace
