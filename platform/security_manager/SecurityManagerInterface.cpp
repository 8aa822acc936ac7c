// Compiled into each library that needs the two operations, so that neither depends on the other's copy.
#include "platform/security_manager/SecurityManagerInterface.h"

SecurityManagerInterface::SecurityManagerInterface() = default;

// Leaves the object with this class's table, as the constructor does. To the compilers nobody may look at it
// afterwards; only a reader of theirs between storing and the end keeps the store.
SecurityManagerInterface::~SecurityManagerInterface()
{
    asm volatile("" : : "r"(this) : "memory");
}

#if defined(__GNUC__) && !defined(__clang__) && defined(__LP64__)
// GCC leaves the two entries of the destructor null in the table of an abstract class. They follow the table's two
// words of its own and the seven operations, of which each is pure.
asm(".reloc _ZTV24SecurityManagerInterface + 72, BFD_RELOC_64, _ZN24SecurityManagerInterfaceD1Ev\n"
    ".reloc _ZTV24SecurityManagerInterface + 80, BFD_RELOC_64, _ZN24SecurityManagerInterfaceD0Ev");
#endif
