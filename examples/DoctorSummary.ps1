<#
.SYNOPSIS
  Summarises the doctor's findings of many workstations.
.DESCRIPTION
  Software distribution runs on each workstation
      vemra-revise.exe doctor --json > \\server\share\doctor\%COMPUTERNAME%.json
  and this script reads every such file of a folder: one row per machine and
  class that is not usable or has problems, with the problems and the fixes
  the doctor names. Machines whose file is missing or unreadable are listed
  too, so that none is silently skipped.
.PARAMETER Folder
  The folder of <machine>.json files.
.PARAMETER Machines
  The machines expected there (a list, or a file with one name per line);
  when given, a machine without a file is reported.
.EXAMPLE
  .\DoctorSummary.ps1 -Folder \\server\share\doctor -Machines (Get-Content machines.txt) |
    Export-Csv doctor-summary.csv -NoTypeInformation
#>
param(
  [Parameter(Mandatory = $true)] [string] $Folder,
  [string[]] $Machines = @()
)

$seen = @{}
foreach ($file in Get-ChildItem -Path $Folder -Filter '*.json' -File) {
  $machine = [System.IO.Path]::GetFileNameWithoutExtension($file.Name)
  $seen[$machine.ToLowerInvariant()] = $true
  try {
    $report = Get-Content -Raw -Path $file.FullName | ConvertFrom-Json
  } catch {
    [pscustomobject]@{ Machine = $machine; Class = ''; Usable = $false;
                       Problems = "unreadable doctor output: $($_.Exception.Message)" }
    continue
  }
  foreach ($class in $report.classes) {
    if ($class.usable -and $class.problems.Count -eq 0) { continue }
    [pscustomobject]@{ Machine = $machine; Class = $class.class; Usable = [bool]$class.usable;
                       Problems = ($class.problems -join ' | ') }
  }
}
foreach ($machine in $Machines) {
  if ($machine -and -not $seen.ContainsKey($machine.Trim().ToLowerInvariant())) {
    [pscustomobject]@{ Machine = $machine.Trim(); Class = ''; Usable = $false;
                       Problems = 'no doctor output from this machine' }
  }
}
