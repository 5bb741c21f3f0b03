#include "kvsig/montage/names/ReservedNames.h"

namespace kvsig {

char gszGapDefn[] = "Gap";
char gszGap[] = "        ";
char gszOff[] = "(off)";
char gszRecorded[] = "Recorded";
char gszComments[] = "Comment";
char gszTimes[] = "Time";

char szINIMontageFile[] = "kvmont.ini";
char szINIMontageFileXML[] = "KVMontageTemplates.xml";
char szINITopoFile[] = "kvtopo.ini";
char szINIUnkDataFile[] = "kvunkdat.ini";

} // namespace kvsig
