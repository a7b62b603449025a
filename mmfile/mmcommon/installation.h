// Whether a product of the suite is installed under the installation root.
#ifndef MMFILESHARED_MMCOMMON_INSTALLATION_H
#define MMFILESHARED_MMCOMMON_INSTALLATION_H

#ifdef __cplusplus
extern "C" {
#endif

// Sets *status to 0 and looks the product's directory up under the
// installation root; returns 0 when it was found, -1 when not.
int mmcommon_check_installation(const char* product, int* status);

#ifdef __cplusplus
}
#endif

#endif  // MMFILESHARED_MMCOMMON_INSTALLATION_H
