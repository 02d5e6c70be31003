/* The whole atapi interface. */
#ifndef ATAPI_ATAPI_H
#define ATAPI_ATAPI_H

#include "at_link.h"
#include "at_parse.h"
#include "at_send.h"
#include "at_text.h"
#include "at_time_translate.h"
#include "at_types.h"
#include "ats_comm.h"
#include "ats_device.h"
#include "ats_ndis.h"
#include "ats_security.h"
#include "ats_usim.h"
#include "m2m_ats_call.h"
#include "m2m_ats_network.h"
#include "m2m_ats_sms.h"
#include "m2m_ats_usim.h"
#include "m2m_ats_v2x.h"
#include "m2m_ats_voice_call.h"

#endif
