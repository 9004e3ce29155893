#pragma once

// Marks the exported surface of libVantraCore-0.so; everything else is built hidden.
#define VANTRACORE_API __attribute__((visibility("default")))
