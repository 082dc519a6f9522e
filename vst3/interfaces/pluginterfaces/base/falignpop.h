//-----------------------------------------------------------------------------
// Project     : SDK Core
//
// Category    : SDK Core Interfaces
// Filename    : pluginterfaces/base/falignpop.h
// Created by  : Steinberg, 01/2004
// Description : Restore alignment settings
//
//-----------------------------------------------------------------------------
// This file is part of a Steinberg SDK. It is subject to the license terms
// in the LICENSE file found in the top-level directory of this distribution
// and at www.steinberg.net/sdklicenses. 
// No part of the SDK, including this file, may be copied, modified, propagated,
// or distributed except according to the terms contained in the LICENSE file.
//-----------------------------------------------------------------------------

//---------------------------------------------------------------------------------------------------
#if SMTG_OS_MACOS
	#pragma pack(pop)
#elif defined __BORLANDC__
	#pragma -a-
#elif SMTG_OS_WINDOWS
	#pragma pack(pop)
#elif SMTG_OS_LINUX
	#pragma pack(pop)
#endif
//---------------------------------------------------------------------------------------------------
