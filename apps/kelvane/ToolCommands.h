#pragma once

#include "ToolCommand.h"

ToolCommand createImportCommand();
ToolCommand createInfoCommand();
ToolCommand createSetCommand();
ToolCommand createExportCommand();
ToolCommand createSelectCommand();
ToolCommand createTableCommand();
ToolCommand createCheckCommand();
ToolCommand createMapCommand();
ToolCommand createCsCommand();
ToolCommand createConvertCommand();
ToolCommand createUnitsCommand();
ToolCommand createPackCommand();
ToolCommand createUnpackCommand();
ToolCommand createArchiveCommand();
