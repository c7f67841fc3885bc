// The five slots that a control interface has for each parameter P, declared, and forwarded to an AutomatedControl.
// Value is float or INT32, in the units of the settings record.
#pragma once

// Get    S_OK, or E_POINTER. [any thread]
// Set    clamps to the range; S_OK. [page]
// Begin  an edit by hand begins: automation of P rests, the recorder is told. S_OK; S_FALSE when one is open. [page]
// End    the engine fetches the settings again; S_OK. [page]
// Is     S_OK while streaming inside an envelope segment of P, else S_FALSE. [any thread]
#define TERVAN_PARAM_SLOTS(P, Value)                          \
  virtual HRESULT STDMETHODCALLTYPE Get##P(Value* value) = 0; \
  virtual HRESULT STDMETHODCALLTYPE Set##P(Value value) = 0;  \
  virtual HRESULT STDMETHODCALLTYPE Begin##P##Edit() = 0;     \
  virtual HRESULT STDMETHODCALLTYPE End##P##Edit() = 0;       \
  virtual HRESULT STDMETHODCALLTYPE Is##P##Automated() = 0;

// index: the parameter's row.
#define TERVAN_FORWARD_PARAM_SLOTS(P, Value, control, index)                         \
  STDMETHODIMP Get##P(Value* value) override { return (control).Get(index, value); } \
  STDMETHODIMP Set##P(Value value) override { return (control).Set(index, value); }  \
  STDMETHODIMP Begin##P##Edit() override { return (control).BeginEdit(index); }      \
  STDMETHODIMP End##P##Edit() override { return (control).EndEdit(index); }          \
  STDMETHODIMP Is##P##Automated() override { return (control).IsAutomated(index); }
