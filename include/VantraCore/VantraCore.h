#pragma once

// Everything public of VantraCore in one include.
#include <VantraCore/Export.h>
#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/ExceptionTransport.h>
#include <VantraCore/IndexSet.h>
#include <VantraCore/Optional.h>
