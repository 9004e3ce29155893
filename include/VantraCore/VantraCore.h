#pragma once

// Everything public of VantraCore in one include.
#include <VantraCore/Export.h>
#include <VantraCore/ExceptionTransport.h>
#include <VantraCore/Optional.h>
#include <VantraCore/Int128.h>
#include <VantraCore/Complex.h>
#include <VantraCore/Time.h>
