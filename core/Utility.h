// The applications' helper functions in one include: SQL literals, text, date and number helpers,
// compression, component text, and the dataset and parameter helpers.
#pragma once

#include "ComponentStream.h"
#include "Compression.h"
#include "DataHelpers.h"
#include "DateHelpers.h"
#include "NumberHelpers.h"
#include "ParamArrays.h"
#include "SqlFieldLiterals.h"
#include "SqlLiterals.h"
#include "TextUtils.h"
