#pragma once

// Marks the exported surface of libVantraCore-0.so; everything else is built hidden.
#define VANTRACORE_API __attribute__((visibility("default")))
// Keeps a member of an exported class out of the library's symbol table.
#define VANTRACORE_HIDDEN __attribute__((visibility("hidden")))
