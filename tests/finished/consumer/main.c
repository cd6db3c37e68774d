/* Checks that the library answers; without a calibration file it says so. */
#include <itofinterface.h>

int main(void) { return itof_init() == ITOF_CALIBRATION_UNREADABLE ? 0 : 1; }
