#include <cstdint>

extern "C" uint32_t ZORV_ServiceOfNoHost();
extern "C" uint32_t ZorvSmartDiagnoseInit();

uint32_t ZorvSmartDiagnoseInit() {
    return ZORV_ServiceOfNoHost();
}
