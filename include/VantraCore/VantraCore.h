#pragma once

// Everything public of VantraCore in one include.
#include <VantraCore/ArrayIndexing.h>
#include <VantraCore/ArraySlice.h>
#include <VantraCore/Complex.h>
#include <VantraCore/ElementKinds.h>
#include <VantraCore/ExceptionReporter.h>
#include <VantraCore/ExceptionTransport.h>
#include <VantraCore/ExceptionWithMoreInfo.h>
#include <VantraCore/Export.h>
#include <VantraCore/FileOperations.h>
#include <VantraCore/IVariantData.h>
#include <VantraCore/IndexSet.h>
#include <VantraCore/Int128.h>
#include <VantraCore/InternedString.h>
#include <VantraCore/Optional.h>
#include <VantraCore/Path.h>
#include <VantraCore/ScalarVariantData.h>
#include <VantraCore/ScratchDirectory.h>
#include <VantraCore/StringUtilities.h>
#include <VantraCore/Time.h>
#include <VantraCore/VariantCApi.h>
#include <VantraCore/VectorVariantData.h>
#include <VantraCore/VxString.h>
#include <VantraCore/VxStringView.h>
#include <VantraCore/VxVariant.h>
#include <VantraCore/WellKnownType.h>
