#include "fixtures/reference_model.h"
