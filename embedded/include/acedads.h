// The editor's plain functions: system variables, coordinate systems, input and the AutoLISP
// functions of a module. Each returns RTNORM, or RTERROR and changes nothing; without a
// running host, and for null arguments, that is RTERROR.
#pragma once

#include "acutmem.h"
#include "adscodes.h"
#include "adsdef.h"

/// Reads a system variable of the current document into `result`: type and value, with the
/// link set to null. A text is a new one that the caller frees (acutDelString).
/// Fails: RTERROR for a name that is no variable's; `result` stays as it was.
HOST_API int acedGetVar(const ACHAR* name, resbuf* result);

/// Sets a system variable of the current document.
/// Fails: RTERROR for an unknown name, a read-only variable, a value of another type and one
///        out of the variable's range.
HOST_API int acedSetVar(const ACHAR* name, const resbuf* value);

/// Carries a point (disp 0) or a displacement (otherwise) from one coordinate system into
/// another. A system is RTSHORT 0 (world), 1 (user), 2 (display of the current viewport), or
/// RT3DPOINT with the normal of an object's own system.
/// Fails: RTERROR for anything else, and for a null normal.
HOST_API int acedTrans(const ads_point point, const resbuf* from, const resbuf* to, int disp,
                       ads_point result);

// Input. Nobody sits before this host: the words that a command was started with answer its
// prompts, one each, in their order. The document's input reactors are told of every prompt.
// Fails: RTCAN where no word is left; RTNONE for an empty word, as a user's bare Enter; RTERROR
//        for a word that is not what the prompt wants. `result` stays as it was.

/// The most letters of a text that acedGetString gives; the caller's buffer has one more.
inline constexpr unsigned kMaxStringInput = 132;
/// A text; an empty word is an empty text. Blanks are letters like others here.
HOST_API int acedGetString(int takesBlanks, const ACHAR* prompt, ACHAR* result);
HOST_API int acedGetInt(const ACHAR* prompt, int* result);
HOST_API int acedGetReal(const ACHAR* prompt, ads_real* result);
/// A number, in drawing units. The base point, which may be null, is for reactors.
HOST_API int acedGetDist(const ads_point base, const ACHAR* prompt, ads_real* result);
/// "X,Y" or "X,Y,Z", in the user's coordinate system.
HOST_API int acedGetPoint(const ads_point base, const ACHAR* prompt, ads_point result);

/// Defines an AutoLISP function of the module that is being served by the host at the moment.
/// Fails: RTERROR without such a module, for an empty name or a negative code, and for a name
///        that another module has defined.
HOST_API int acedDefun(const ACHAR* name, short functionCode);
/// Undefines it again.
/// Fails: RTERROR when the module has no function of that name and code.
HOST_API int acedUndef(const ACHAR* name, short functionCode);
/// Sets what the host calls for a function code of the module; without it the module gets
/// kInvkSubrMsg.
HOST_API int acedRegFunc(int (*function)(), int functionCode);
/// The code of the AutoLISP function that the module is being called for; RTERROR when it is
/// not being called.
HOST_API int acedGetFunCode();
