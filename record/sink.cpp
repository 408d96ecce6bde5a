#include "record/sink.h"

CSinkFailure::~CSinkFailure() = default;  // here, so that its type is the library's in every plug-in
