#include "host/CNecessaryComponentInfo.h"

CNecessaryComponentInfo::CNecessaryComponentInfo() = default;
CNecessaryComponentInfo::CNecessaryComponentInfo(const CNecessaryComponentInfo& other) = default;
CNecessaryComponentInfo& CNecessaryComponentInfo::operator=(const CNecessaryComponentInfo& other) = default;
CNecessaryComponentInfo::~CNecessaryComponentInfo() = default;
