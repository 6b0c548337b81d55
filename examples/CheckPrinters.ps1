<#
.SYNOPSIS
  Reports, for every revision printer class of VemraKestrivon.dll, whether its
  printer is installed and set up for unattended revisions.
.DESCRIPTION
  Each class is created late-bound by ProgID, as Vemra creates it, and asked
  what Vemra asks before a revision (InitPrnSettings, CheckPrnSettings,
  IsPrinterAvailable). Nothing is printed and nothing is changed. Run it with
  the PowerShell of the host's bitness: a 32-bit Vemra uses the 32-bit DLL
  (C:\Windows\SysWOW64\WindowsPowerShell\v1.0\powershell.exe).
.PARAMETER Class
  The classes to check; all seven when omitted.
.OUTPUTS
  One object per class (Class, Created, Ready, Extension, Reasons, Settings).
  The exit code is 0 when every class is ready, 1 when one is not, 2 when one
  cannot be created.
.EXAMPLE
  .\CheckPrinters.ps1 | Format-Table -AutoSize
.EXAMPLE
  .\CheckPrinters.ps1 -Class AdobePDF,PDFFactory | ConvertTo-Json
#>
param(
  [string[]] $Class = @('NoFile', 'AdobePDF', 'AcrobatDistiller', 'AcrobatWriter', 'PDFFactory',
                        'VemraTiff', 'VemraHARP')
)

$worst = 0
foreach ($name in $Class) {
  $printer = $null
  try {
    $printer = New-Object -ComObject "VemraKestrivon.$name"
  } catch {
    [pscustomobject]@{ Class = $name; Created = $false; Ready = $false; Extension = '';
                       Reasons = "cannot be created: $($_.Exception.Message)"; Settings = '' }
    $worst = 2
    continue
  }
  try {
    $found = [bool]$printer.InitPrnSettings()
    $settings = [string]$printer.CheckPrnSettings()
    $available = [bool]$printer.IsPrinterAvailable()
    $reasons = @()
    if (-not $found) { $reasons += 'printer not found' }
    if ($found -and -not $available) { $reasons += 'printer not available' }
    if ($settings.Length -gt 0) { $reasons += 'settings need attention' }
    $ready = $reasons.Count -eq 0
    if (-not $ready -and $worst -lt 1) { $worst = 1 }
    [pscustomobject]@{ Class = $name; Created = $true; Ready = $ready;
                       Extension = [string]$printer.Extension; Reasons = ($reasons -join '; ');
                       Settings = $settings }
  } finally {
    [void][System.Runtime.InteropServices.Marshal]::ReleaseComObject($printer)
  }
}
exit $worst
