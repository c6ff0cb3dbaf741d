/* A user subroutine as a plug-in author would write it in C: it must compile against the headers as they are. */
#include "qvbrisk/qvbrisk.h"

void qvtest_plugin(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result);

void qvtest_plugin(void* handle, double time, double* par, int npar, int difflag, int iflag, double* result) {
  const qv_user_subroutine entry = qvsoil_interaction;
  int ids[3], count = 3, err = 0;
  wchar_t text[QV_TEXT_CAPACITY] = {0};
  ids[0] = (int)par[0];
  ids[1] = (int)par[1];
  ids[2] = ids[1];
  sysary(handle, "TDISP", ids, 3, result, &count, &err);
  GET_QVSPATH_S(handle, &count, text, &err);
  result[3] = PI * DTOR * (double)(MOTTP_ROT + MAX_RES);
  if (err != 0) entry(handle, time, par, npar, difflag, iflag, result);
}
