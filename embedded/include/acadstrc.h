// Status codes of the host API: what an operation on the database or the editor returns.
// acadErrorStatusText() gives the code's own name, for messages.
#pragma once

#include "adesk.h"

namespace Acad {

enum ErrorStatus {
  eOk = 0,
  eNotApplicable,
  eInvalidInput,
  eAmbiguousInput,
  eOutOfMemory,
  eInvalidKey,
  eKeyNotFound,
  eDuplicateKey,
  eInvalidIndex,
  eDuplicateRecordName,
  eNotThatKindOfClass,
  eNullObjectPointer,
  eNullObjectId,
  eNullHandle,
  eUnknownHandle,
  eHandleExists,
  eNullBlockName,
  eInvalidBlockName,
  eNullEntityPointer,
  eIllegalEntityType,
  eNoDatabase,
  eNotInDatabase,
  eAlreadyInDb,
  eWrongDatabase,
  eNotOpenForRead,
  eNotOpenForWrite,
  eWasOpenForRead,
  eWasOpenForWrite,
  eWasOpenForNotify,
  eAtMaxReaders,
  eWasErased,
  ePermanentlyErased,
  eObjectToBeDeleted,
  eOnLockedLayer,
  eInvalidLayer,
  eInvalidContext,
  eDegenerateGeometry,
  eInvalidExtents,
  eNullExtents,
  eNonCoplanarGeometry,
  eNotClosedCurve,
  eSelfIntersecting,
  eGeneralModelingFailure,
  eInvalidNormal,
  eCannotScaleNonUniformly,
  eSingularMatrix,
  eFileNotFound,
  eFileAccessErr,
  eFileSharingViolation,
  eFileWriteError,
  eFilerError,
  eFileInternalErr,
  eDwgNeedsRecovery,
  eDwgObjectImproperlyRead,
  eBadDwgHeader,
  eBadDxfSequence,
  eBadDxfFile,
  eInvalidDxfCode,
  eMissingDxfField,
  eUnsupportedFileFormat,
  eUserBreak
};

/// How a prompt of the editor ended.
enum PromptStatus {
  eNone = 5000,
  eModeless = 5027,
  eNormal = 5100,
  eError = -5001,
  eCancel = -5002,
  eRejected = -5003,
  eFailed = -5004,
  eKeyword = -5005,
  eDirect = -5999
};

}  // namespace Acad

/// The status's own name ("eWasErased"); "eUnknown" for a value outside the enumeration.
/// The returned text is static.
HOST_API const ACHAR* acadErrorStatusText(Acad::ErrorStatus status);
