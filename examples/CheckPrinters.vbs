' Reports, for every revision printer class of VemraKestrivon.dll, whether
' its printer is installed and set up for unattended revisions: the class is
' created late-bound by ProgID, as Vemra creates it, and asked what Vemra
' asks before a revision. Nothing is printed and nothing is changed.
'
'   cscript //nologo CheckPrinters.vbs [Class ...]
'
' Without arguments all seven classes are checked. One line per class:
'   <Class>: ready | not ready: <reason>
' followed by the settings text the class reports, if any. Exit code: 0 when
' every class checked is ready, 1 when one is not, 2 when a class cannot be
' created (the DLL or the host is not registered).
Option Explicit

Dim classes, i, worst, result
If WScript.Arguments.Count > 0 Then
  ReDim classes(WScript.Arguments.Count - 1)
  For i = 0 To WScript.Arguments.Count - 1
    classes(i) = WScript.Arguments(i)
  Next
Else
  classes = Array("NoFile", "AdobePDF", "AcrobatDistiller", "AcrobatWriter", "PDFFactory", _
                  "VemraTiff", "VemraHARP")
End If

worst = 0
For i = 0 To UBound(classes)
  result = CheckClass(classes(i))
  If result > worst Then worst = result
Next
WScript.Quit worst

' 0 ready, 1 not ready, 2 not creatable.
Function CheckClass(className)
  Dim printer, found, settings, available
  On Error Resume Next
  Set printer = CreateObject("VemraKestrivon." & className)
  If Err.Number <> 0 Then
    WScript.Echo className & ": cannot be created (" & Hex(Err.Number) & " " & Err.Description & ")"
    CheckClass = 2
    Exit Function
  End If
  On Error GoTo 0

  found = printer.InitPrnSettings()
  settings = printer.CheckPrnSettings()
  available = printer.IsPrinterAvailable()
  If found And available And Len(settings) = 0 Then
    WScript.Echo className & ": ready (archives " & printer.Extension & ")"
    CheckClass = 0
  Else
    Dim reasons
    reasons = ""
    If Not found Then reasons = reasons & "printer not found; "
    If found And Not available Then reasons = reasons & "printer not available; "
    If Len(settings) > 0 Then reasons = reasons & "settings need attention; "
    WScript.Echo className & ": not ready: " & Left(reasons, Len(reasons) - 2)
    If Len(settings) > 0 Then WScript.Echo "  " & Replace(settings, vbCrLf, vbCrLf & "  ")
    CheckClass = 1
  End If
  Set printer = Nothing
End Function
