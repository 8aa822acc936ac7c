// Compiled into each library that needs the constructor and destructor, so that no library depends on another's copy.
#include "platform/security_manager/SecurityManagerInterface.h"

SecurityManagerInterface::SecurityManagerInterface() = default;

// Puts this class's virtual table back into the object, as the constructor does. Compilers may drop that store, because
// nobody may use the object afterwards. The assembler statement reads the object, so the store stays.
SecurityManagerInterface::~SecurityManagerInterface()
{
    asm volatile("" : : "r"(this) : "memory");
}

#if defined(__GNUC__) && !defined(__clang__) && defined(__LP64__)
// GCC leaves the destructor's two entries null in the virtual table of an abstract class. The relocations fill them.
// They follow the table's two header words and the seven pure operations, 8 bytes each.
asm(".reloc _ZTV24SecurityManagerInterface + 72, BFD_RELOC_64, _ZN24SecurityManagerInterfaceD1Ev\n"
    ".reloc _ZTV24SecurityManagerInterface + 80, BFD_RELOC_64, _ZN24SecurityManagerInterfaceD0Ev");
#endif
