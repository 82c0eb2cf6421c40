/*
 * Zenlo: the C interface of optimisation (objectives, soft constraints and
 * the optimising environment). Everything of zenlo.h is available here too.
 */
#ifndef ZENLO_QUORM_H_INCLUDED
#define ZENLO_QUORM_H_INCLUDED

#include "zenlo.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifdef __cplusplus
}
#endif

#endif /* ZENLO_QUORM_H_INCLUDED */
