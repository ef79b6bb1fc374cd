// The input context reactor behind the input watcher: registered with one document at a time,
// it notes in a flag whether a corner pick is under way there.
#pragma once

#include "acdocman.h"
#include "acedinpt.h"

class CUserInputReactor : public AcEdInputContextReactor {
 public:
  /// Registers the reactor with the document, unless that is null.
  explicit CUserInputReactor(AcApDocument* pDoc);

  void beginGetCorner(const AcGePoint3d* firstCorner, const ACHAR* promptString, int initGetFlags,
                      const ACHAR* keywords) override;
  void endGetCorner(Acad::PromptStatus returnStatus, AcGePoint3d& secondCorner,
                    const ACHAR*& keyword) override;

  /// Detaches the reactor first.
  ~CUserInputReactor() override;

  /// Leaves the document that the reactor is registered with, if any, and registers it with
  /// another; null leaves it detached. The flag stays as it is.
  virtual void AttachToDocument(AcApDocument* pDoc);
  /// Leaves the document that the reactor is registered with, if any. The flag stays as it is.
  virtual void DetachFromDocument();
  /// Null while detached.
  virtual AcApDocument* GetDocument();
  virtual bool IsAttached();

  /// Whether a corner pick has begun and not ended, as far as the reactor was told.
  bool IsInGetCorner() const { return m_bInGetCorner; }

 private:
  void Register();

  AcApDocument* m_pDocument;
  bool m_bInGetCorner = false;
};
