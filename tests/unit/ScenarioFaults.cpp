#include "tests/unit/ScenarioFaults.h"

#include <cstdlib>
#include <new>
#include <stdexcept>

namespace secm::testing {

namespace {

// Of operator new, below.
long allocationsToFailure = 0; // 0: none fails
bool hasFailed = false;

} // namespace

void ExpectFaultsToArrive(ScenarioPlayer& player, const std::string& request)
{
    const std::string answer = player.answer;
    const int calls = outside.calls.count;
    for (int call = 1; call <= calls; ++call) {
        outside.calls.count = 0;
        outside.calls.callToFail = call;
        EXPECT_THROW(player.Do(request), std::runtime_error) << request << ", call " << call;
        outside.calls.callToFail = 0;
        player.Do(request);
        EXPECT_EQ(player.answer, answer) << request << " after call " << call;
    }
}

void ExpectNoWrongAnswerWithoutMemory(ScenarioPlayer& player, const std::string& request)
{
    const std::string answer = player.answer;
    for (long allocation = 1;; ++allocation) {
        bool isAnswered = false;
        hasFailed = false;
        allocationsToFailure = allocation;
        try {
            player.Do(request);
            isAnswered = true;
        } catch (const std::bad_alloc&) {
        }
        allocationsToFailure = 0;
        ASSERT_TRUE(isAnswered || hasFailed);
        if (isAnswered) {
            EXPECT_EQ(player.answer, answer) << request << " with allocation " << allocation << " refused";
        }
        if (!hasFailed) {
            return;
        }
        player.Do(request);
        EXPECT_EQ(player.answer, answer) << request << " after allocation " << allocation;
    }
}

} // namespace secm::testing

void* operator new(std::size_t size)
{
    if (secm::testing::allocationsToFailure > 0 && --secm::testing::allocationsToFailure == 0) {
        secm::testing::hasFailed = true;
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(size != 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    std::free(memory);
}
