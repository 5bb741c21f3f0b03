#pragma once

/// Every public name of the library.
///
///   std::string error;
///   kvsig::ReaderPtr reader = kvsig::openReader("night.edf", 0, &error);
///   std::vector<float> page(2560);
///   reader->getData(channel, first, first + 2559, page.data(), 1.0, 0);

#include "kvsig/filters/Convolve.h"
#include "kvsig/filters/DisplayDefaults.h"
#include "kvsig/filters/DisplayText.h"
#include "kvsig/filters/FIRFilter.h"
#include "kvsig/filters/FIRLowPass.h"
#include "kvsig/filters/Filter.h"
#include "kvsig/filters/FilterAttr.h"
#include "kvsig/filters/FilterList.h"
#include "kvsig/filters/IIRFilter.h"
#include "kvsig/filters/IIRHighPass.h"
#include "kvsig/filters/IIRLowPass.h"
#include "kvsig/filters/IIRNotch.h"
#include "kvsig/filters/Smooth.h"
#include "kvsig/kernel/ClientEvent.h"
#include "kvsig/kernel/DataReader.h"
#include "kvsig/kernel/IDataReader.h"
#include "kvsig/kernel/PatientRec.h"
#include "kvsig/kernel/ReaderPtr.h"
#include "kvsig/montage/AvgSource.h"
#include "kvsig/montage/DataCache.h"
#include "kvsig/montage/DataSource.h"
#include "kvsig/montage/FilterDesign.h"
#include "kvsig/montage/G1G2Source.h"
#include "kvsig/montage/MontageContext.h"
#include "kvsig/montage/names/Derivation.h"
#include "kvsig/montage/names/References.h"
#include "kvsig/montage/names/ReservedNames.h"
#include "kvsig/montage/names/ScalpGrid.h"
#include "kvsig/montage/names/Translate1020.h"
#include "kvsig/readers/BDFReader.h"
#include "kvsig/readers/EDF90Reader.h"
#include "kvsig/readers/LifelinesReader.h"
#include "kvsig/readers/TelefactorEDFReader.h"
#include "kvsig/registry/FormatTable.h"
#include "kvsig/registry/FrontDoor.h"
#include "kvsig/util/ClockSeconds.h"
#include "kvsig/util/LogSink.h"
#include "kvsig/util/PathText.h"
#include "kvsig/util/StripBlanks.h"
#include "kvsig/util/TimeText.h"
