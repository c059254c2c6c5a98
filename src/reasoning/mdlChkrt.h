// The layer between the registry and the truth maintenance: the place for checks of a model. It
// adds nothing yet.
#pragma once

#include "trajectory/DataManagerrt.h"

class mdlChk : public DataManager {
public:
    using DataManager::DataManager;
};
