#pragma once

#include "ToolCommand.h"

ToolCommand createImportCommand();
ToolCommand createInfoCommand();
ToolCommand createExportCommand();
ToolCommand createCheckCommand();
ToolCommand createMapCommand();
ToolCommand createConvertCommand();
