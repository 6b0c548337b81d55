' Every revision printer class by ProgID and every operation by name,
' late-bound, as a script or the host's macro language calls them.
' Usage: cscript //nologo AllClasses.vbs [traceservice]
' With "traceservice" the host's TraceService is registered, so NoFile's
' DoPrint can write its trace line and answers True; without it, it answers
' False. Exits with 77 when every check held: a script error ends cscript
' with 0, so 0 never means success.
Option Explicit

Dim failures, withTraceService
failures = 0
withTraceService = False
If WScript.Arguments.Count > 0 Then withTraceService = (WScript.Arguments(0) = "traceservice")

Sub Check(what, actual, expected)
  If TypeName(actual) <> TypeName(expected) Then
    WScript.Echo "FAILED " & what & ": got a " & TypeName(actual) & ", expected a " & TypeName(expected)
    failures = failures + 1
  ElseIf actual <> expected Then
    WScript.Echo "FAILED " & what & ": got '" & actual & "', expected '" & expected & "'"
    failures = failures + 1
  End If
End Sub

Sub CheckClass(className, extension)
  Dim printer, name
  name = "VemraKestrivon." & className
  Set printer = CreateObject(name)
  Check name & ".Extension", printer.Extension, extension
  Check name & ".Version", printer.Version, CLng(1)
  Check name & ".SetPrnDefaults", printer.SetPrnDefaults, True
  If className = "NoFile" Then
    Check name & ".InitPrnSettings", printer.InitPrnSettings, True
    Check name & ".CheckPrnSettings", printer.CheckPrnSettings, ""
    Check name & ".IsPrinterAvailable", printer.IsPrinterAvailable, True
    Check name & ".DoPrint", printer.DoPrint(Nothing, Nothing, "", ""), withTraceService
    Check name & ".AppendFile", printer.AppendFile("C:\no such folder\a.pdf", "C:\no such folder\b"), True
  Else
    Check name & ".InitPrnSettings", printer.InitPrnSettings, False
    Check name & ".CheckPrnSettings", TypeName(printer.CheckPrnSettings), "String"
    Check name & ".IsPrinterAvailable", printer.IsPrinterAvailable, False
    Check name & ".DoPrint", printer.DoPrint(Nothing, Nothing, "", ""), False
    Check name & ".AppendFile", printer.AppendFile("C:\no such folder\a.pdf", "C:\no such folder\b"), False
  End If
  Check name & ".Extension again", printer.Extension, extension
  Set printer = Nothing
End Sub

CheckClass "VemraTiff", ".TIF"
CheckClass "AcrobatDistiller", ".PDF"
CheckClass "AcrobatWriter", ".PDF"
CheckClass "PDFFactory", ".PDF"
CheckClass "NoFile", "NoFile"
CheckClass "AdobePDF", ".PDF"
' Without HARP.ini the extension setting is empty: a bare dot.
CheckClass "VemraHARP", "."

If failures = 0 Then
  WScript.Quit 77
End If
WScript.Echo failures & " check(s) failed"
WScript.Quit 1
