; The setup program: installs for the person who runs it, without an administrator. Compiled with
;   makensis -DOUT=FOLDER quillmere.nsi
; where FOLDER has what make_package.py wrote there: files.nsh, which says version, size and files, and the files.
;
; Exit codes: 0 done, 1 cancelled, 2 a file could not be written, 3 Excel is 32-bit, 4 Excel is running or
; has a file of ours in use.
Target amd64-unicode
RequestExecutionLevel user
ManifestDPIAware true
SetCompressor /SOLID lzma
AllowSkipFiles off

!include LogicLib.nsh
!include MUI2.nsh
!include "${OUT}/files.nsh"

!define ADDIN Quillmere4.xll
!define COMPANION QuillmereVba.xlam
!define PROGRAMS_KEY Software\Microsoft\Windows\CurrentVersion\Uninstall
!define UNINSTALL_KEY ${PROGRAMS_KEY}\Quillmere4
!define OFFICE_KEY Software\Microsoft\Office
!define RUNNING "Excel is running, or the help of Quillmere is open. Save your work and close it, then try again."
!define THIRTY_TWO_BITS "Excel on this computer is 32-bit, and Quillmere needs 64-bit Excel. In Excel, \
File > Account > About Excel shows which one it is. Nothing was installed."

Name "Quillmere V4"
OutFile "${OUT}/Quillmere4-${VERSION}-setup.exe"
BrandingText "Quillmere ${VERSION}"
InstallDir "$LOCALAPPDATA\Programs\Quillmere"
; An upgrade goes where the last one went.
InstallDirRegKey HKCU "${UNINSTALL_KEY}" InstallLocation
VIProductVersion ${VERSION}.0
VIAddVersionKey ProductName Quillmere
VIAddVersionKey FileDescription "Setup of Quillmere V4, worksheet functions for Excel"
VIAddVersionKey FileVersion ${VERSION}
VIAddVersionKey ProductVersion ${VERSION}
VIAddVersionKey LegalCopyright "The authors of Quillmere"

!define MUI_ICON "${NSISDIR}/Contrib/Graphics/Icons/nsis3-install.ico"
!define MUI_UNICON "${NSISDIR}/Contrib/Graphics/Icons/nsis3-uninstall.ico"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${NSISDIR}/Contrib/Graphics/Wizard/nsis3-metro.bmp"
!define MUI_WELCOMEPAGE_TEXT "This installs Quillmere ${VERSION}, worksheet functions for 64-bit Excel, for you alone; \
no administrator is needed.$\r$\n$\r$\nPlease close Excel first.$\r$\n$\r$\nRemove it again in Windows' Settings > Apps."
!define MUI_FINISHPAGE_TITLE "Quillmere is installed"
!define MUI_FINISHPAGE_TEXT_LARGE
!define MUI_FINISHPAGE_TEXT "Excel loads it from its next start on. To try it, type into a cell:$\r$\n$\r$\n\
    =REVERSE.TEXT($\"Excel$\")$\r$\n$\r$\nIt gives lecxE. Help and sample workbooks are in the Start menu."
!define MUI_FINISHPAGE_SHOWREADME "$INSTDIR\help\index.html"
!define MUI_FINISHPAGE_SHOWREADME_TEXT "Show the help"
!insertmacro MUI_PAGE_WELCOME
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
!insertmacro MUI_UNPAGE_CONFIRM
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English

; $0 becomes 1 if an installed file is in use.
!macro FindUse FILE
  ${If} ${FileExists} "$INSTDIR\${FILE}"
    ClearErrors
    FileOpen $1 "$INSTDIR\${FILE}" a
    ${If} ${Errors}
      StrCpy $0 1
    ${Else}
      FileClose $1
    ${EndIf}
  ${EndIf}
!macroend

; Ends with 4 as long as Excel runs, or has the add-in in use: an Excel that another program started shows no window. Help
; that is open could not be replaced either.
!macro RefuseWhileExcelRuns
  ${Do}
    FindWindow $0 XLMAIN
    !insertmacro FindUse ${ADDIN}
    !insertmacro FindUse Quillmere4.chm
    ${If} $0 = 0
      ${Break}
    ${EndIf}
    ${If} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "${RUNNING}" /SD IDCANCEL IDCANCEL`
      SetErrorLevel 4
      Quit
    ${EndIf}
  ${Loop}
!macroend

; The add-ins that Excel opens at its start, in the key $ExcelKey\Options: the values OPEN, OPEN1, OPEN2 and so on, of which
; Excel reads none behind a gap. WriteLists takes ours out, whichever folder they name, and moves the others up in their
; order; with $Adding = 1 it puts ours behind them. Add-ins without a tick, in the key Add-in Manager, lose ours too.
Var ExcelKey
Var Adding

!macro ExcelLists un
; $2: a value of the list, such as /R "C:\folder\add-in.xll". $3 becomes 1 if it names a file of ours, else 0.
Function ${un}NamesOurs
  StrCpy $3 0
  StrCpy $4 $2
  StrCpy $5 $4 3
  ${If} $5 == "/R "
    StrCpy $4 $4 "" 3
  ${EndIf}
  StrCpy $5 $4 1 -1
  ${If} $5 == '"'
    StrCpy $4 $4 -1
  ${EndIf}
  !insertmacro MatchEnd ${ADDIN}
  !insertmacro MatchEnd ${COMPANION}
FunctionEnd

Function ${un}WriteLists
  StrCpy $R2 0 ; the place of the next value that stays
  ${For} $R3 0 999
    !insertmacro OpenName $1 $R3
    ClearErrors
    ReadRegStr $2 HKCU "$ExcelKey\Options" $1
    ${IfNot} ${Errors}
      Call ${un}NamesOurs
      ${If} $3 = 1
        DeleteRegValue HKCU "$ExcelKey\Options" $1
      ${Else}
        ${If} $R2 < $R3
          !insertmacro OpenName $4 $R2
          WriteRegStr HKCU "$ExcelKey\Options" $4 $2
          DeleteRegValue HKCU "$ExcelKey\Options" $1
        ${EndIf}
        IntOp $R2 $R2 + 1
      ${EndIf}
    ${EndIf}
  ${Next}
  ${If} $Adding = 1
    !insertmacro OpenName $1 $R2
    WriteRegStr HKCU "$ExcelKey\Options" $1 '/R "$INSTDIR\${ADDIN}"'
    IntOp $R2 $R2 + 1
    !insertmacro OpenName $1 $R2
    WriteRegStr HKCU "$ExcelKey\Options" $1 '"$INSTDIR\${COMPANION}"'
  ${EndIf}

  StrCpy $R3 0
  ${Do}
    ClearErrors
    EnumRegValue $2 HKCU "$ExcelKey\Add-in Manager" $R3
    ${If} ${Errors}
      ${Break}
    ${EndIf}
    Call ${un}NamesOurs
    ${If} $3 = 1
      DeleteRegValue HKCU "$ExcelKey\Add-in Manager" $2
    ${Else}
      IntOp $R3 $R3 + 1
    ${EndIf}
  ${Loop}
FunctionEnd
!macroend

; RESULT becomes the name of the list's value number PLACE.
!macro OpenName RESULT PLACE
  StrCpy ${RESULT} OPEN
  ${If} ${PLACE} > 0
    StrCpy ${RESULT} OPEN${PLACE}
  ${EndIf}
!macroend

; $3 becomes 1 if the path $4 is the file NAME, in whichever folder; letter case does not count.
!macro MatchEnd NAME
  StrLen $5 ${NAME}
  StrCpy $6 $4 "" -$5
  ${If} $6 == ${NAME}
    IntOp $5 $5 + 1
    StrCpy $6 $4 1 -$5
    StrLen $7 $4
    ${If} $7 < $5 ; nothing before the name
    ${OrIf} $6 == "\"
    ${OrIf} $6 == "/"
    ${OrIf} $6 == '"'
      StrCpy $3 1
    ${EndIf}
  ${EndIf}
!macroend

!insertmacro ExcelLists ""
!insertmacro ExcelLists un.

; Ends with 3 if Excel is 32-bit. The program itself knows best; without it what Office's own setup noted. Where nothing
; is known, Excel may come later.
Function RefuseThirtyTwoBits
  SetRegView 64
  StrCpy $1 -1
  ReadRegStr $0 HKLM "Software\Microsoft\Windows\CurrentVersion\App Paths\excel.exe" ""
  ${If} $0 != ""
    ; 0 stands for 32-bit programs, 6 for 64-bit ones.
    System::Call 'kernel32::GetBinaryTypeW(w r0, *i .r1) i .r2'
    ${If} $2 = 0
      StrCpy $1 -1
    ${EndIf}
  ${EndIf}
  ${If} $1 = -1
    ReadRegStr $0 HKLM "${OFFICE_KEY}\ClickToRun\Configuration" Platform
    ${If} $0 == ""
      ReadRegStr $0 HKLM "${OFFICE_KEY}\16.0\Outlook" Bitness
    ${EndIf}
    ${If} $0 == ""
      SetRegView 32
      ReadRegStr $0 HKLM "${OFFICE_KEY}\16.0\Outlook" Bitness
      SetRegView 64
    ${EndIf}
    ${If} $0 == x86
      StrCpy $1 0
    ${EndIf}
  ${EndIf}
  ${If} $1 = 0
    MessageBox MB_OK|MB_ICONSTOP "${THIRTY_TWO_BITS}" /SD IDOK
    SetErrorLevel 3
    Quit
  ${EndIf}
FunctionEnd

Function .onInit
  Call RefuseThirtyTwoBits
  !insertmacro RefuseWhileExcelRuns
FunctionEnd

Function un.onInit
  !insertmacro RefuseWhileExcelRuns
FunctionEnd

Section
  ; What is there already goes first, so that no file of an older version stays.
  ReadRegStr $0 HKCU "${UNINSTALL_KEY}" InstallLocation
  ${If} ${FileExists} "$0\Uninstall.exe"
    ExecWait '"$0\Uninstall.exe" /S _?=$0' $1
    ${If} $1 <> 0
      MessageBox MB_OK|MB_ICONSTOP "The version that is there could not be removed. Is Excel running?" /SD IDOK
      SetErrorLevel $1
      Quit
    ${EndIf}
    Delete "$0\Uninstall.exe"
    RMDir $0
  ${EndIf}

  !insertmacro InstallFiles
  SetOutPath $INSTDIR
  WriteUninstaller "$INSTDIR\Uninstall.exe"

  StrCpy $Adding 1
  StrCpy $ExcelKey "${OFFICE_KEY}\16.0\Excel"
  Call WriteLists
  !macro WriteListsOf OFFICE
    StrCpy $ExcelKey "${OFFICE_KEY}\${OFFICE}\Excel"
    ClearErrors
    EnumRegKey $0 HKCU $ExcelKey 0
    ${IfNot} ${Errors}
      Call WriteLists
    ${EndIf}
  !macroend
  !insertmacro WriteListsOf 15.0
  !insertmacro WriteListsOf 14.0

  CreateDirectory "$SMPROGRAMS\Quillmere"
  CreateShortcut "$SMPROGRAMS\Quillmere\Quillmere help.lnk" "$INSTDIR\help\index.html"
  CreateShortcut "$SMPROGRAMS\Quillmere\Quillmere samples.lnk" "$INSTDIR\samples"

  WriteRegStr HKCU "${UNINSTALL_KEY}" DisplayName "Quillmere V4"
  WriteRegStr HKCU "${UNINSTALL_KEY}" DisplayVersion ${VERSION}
  WriteRegStr HKCU "${UNINSTALL_KEY}" Publisher "Quillmere"
  WriteRegStr HKCU "${UNINSTALL_KEY}" InstallLocation $INSTDIR
  WriteRegStr HKCU "${UNINSTALL_KEY}" UninstallString '"$INSTDIR\Uninstall.exe"'
  WriteRegStr HKCU "${UNINSTALL_KEY}" QuietUninstallString '"$INSTDIR\Uninstall.exe" /S'
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" EstimatedSize ${SIZE}
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" NoModify 1
  WriteRegDWORD HKCU "${UNINSTALL_KEY}" NoRepair 1
SectionEnd

Section Uninstall
  StrCpy $Adding 0
  !macro RemoveFrom OFFICE
    StrCpy $ExcelKey "${OFFICE_KEY}\${OFFICE}\Excel"
    Call un.WriteLists
    ; Where Excel never started, these keys came with us.
    DeleteRegKey /ifempty HKCU "$ExcelKey\Options"
    DeleteRegKey /ifempty HKCU $ExcelKey
    DeleteRegKey /ifempty HKCU "${OFFICE_KEY}\${OFFICE}"
  !macroend
  !insertmacro RemoveFrom 16.0
  !insertmacro RemoveFrom 15.0
  !insertmacro RemoveFrom 14.0
  DeleteRegKey /ifempty HKCU "${OFFICE_KEY}"
  DeleteRegKey HKCU "${UNINSTALL_KEY}"
  DeleteRegKey /ifempty HKCU "${PROGRAMS_KEY}"

  Delete "$SMPROGRAMS\Quillmere\Quillmere help.lnk"
  Delete "$SMPROGRAMS\Quillmere\Quillmere samples.lnk"
  RMDir "$SMPROGRAMS\Quillmere"

  !insertmacro RemoveFiles
  Delete "$INSTDIR\Uninstall.exe"
  RMDir $INSTDIR
  RMDir "$LOCALAPPDATA\Programs"
SectionEnd

; To remove its folder the uninstaller goes on from a copy of itself in the folder for temporary files. That is left to
; another program, which gives this one two seconds to end.
Function un.onUninstSuccess
  ${If} $EXEDIR != $INSTDIR
    SetOutPath $TEMP
    ExecShell "" "$SYSDIR\cmd.exe" '/D /C ping -n 3 127.0.0.1 >nul & del /Q "$EXEPATH" & rd "$EXEDIR"' SW_HIDE
  ${EndIf}
FunctionEnd
