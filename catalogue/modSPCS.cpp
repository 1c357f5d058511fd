#include "catalogue/modSPCS.h"

void FillStatePlaneZones() {}
