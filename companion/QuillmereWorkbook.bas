Attribute VB_Name = "QuillmereWorkbook"
' What Quillmere's workbook functions ask Excel's macro language for: COUNTROWS2 and its kin call the function of their
' purpose here, with the reference that they got themselves.
'
' All counts start with the first row of TheRange, or its first column; how far down or right it reaches does not
' matter. Several areas are one range that starts with the topmost row, or the leftmost column, and has the columns, or
' the rows, of all. A cell is empty if it has neither a value nor a formula: a formula whose result is an empty text is
' there, and so is an error. Of merged cells only the first is there, as for Excel's own functions.
'
' What is no reference gives #VALUE!. Nothing is changed, and only the used range is looked at: a whole column costs no
' more than what is in it. The End and Find methods do not serve here: both pass over hidden rows.
'
' Rows and columns go the same way; a line is one or the other, counted from 1.
Option Explicit

' So many lines are read at once ...
Private Const LinesAtOnce As Long = 1000
' ... unless they have more cells than this each: counting those of a line is then faster than reading them.
Private Const LongLine As Long = 256
' Longer texts are not evaluated by Excel.
Private Const LongestFormula As Long = 255
' So many texts may evaluate one another: one that evaluates itself must not use up Excel's stack.
Private Const DeepestEvaluation As Long = 16

Private evaluationsUnderWay As Long

' The number of rows from the first row of TheRange to the last row that is not empty in its columns, below TheRange
' too and hidden or not; 0 if there is none.
Public Function COUNTROWSvba(ByVal TheRange As Variant) As Variant
    COUNTROWSvba = CountToLastFilled(TheRange, True)
End Function

' The number of columns from the first column of TheRange to the last column that is not empty in its rows, right of
' TheRange too and hidden or not; 0 if there is none.
Public Function COUNTCOLSvba(ByVal TheRange As Variant) As Variant
    COUNTCOLSvba = CountToLastFilled(TheRange, False)
End Function

' The number of rows from the first row of TheRange to the last visible one before a visible row that is empty in its
' columns. Hidden rows are passed over, empty or not, and count where a visible one follows; 0 if the first visible row
' is empty.
Public Function COUNTCONTIGROWSvba(ByVal TheRange As Variant) As Variant
    COUNTCONTIGROWSvba = CountToGap(TheRange, True)
End Function

' The number of columns from the first column of TheRange to the last visible one before a visible column that is empty
' in its rows, hidden columns as the hidden rows of COUNTCONTIGROWSvba.
Public Function COUNTCONTIGCOLSvba(ByVal TheRange As Variant) As Variant
    COUNTCONTIGCOLSvba = CountToGap(TheRange, False)
End Function

' The number of rows from the first row of StartRow_Reference to the last row of the sheet's used range; 0 below it,
' and on an empty sheet.
Public Function COUNTUSEDROWSvba(ByVal StartRow_Reference As Variant) As Variant
    COUNTUSEDROWSvba = CountToLastUsed(StartRow_Reference, True)
End Function

' The number of columns from the first column of StartCol_Reference to the last column of the sheet's used range; 0
' right of it, and on an empty sheet.
Public Function COUNTUSEDCOLSvba(ByVal StartCol_Reference As Variant) As Variant
    COUNTUSEDCOLSvba = CountToLastUsed(StartCol_Reference, False)
End Function

' What a text is worth as a formula, with "=" before it or without, on the sheet of the calling cell: a value, or an
' array. A reference as the result gives the values of its cells. StringFormula is a text, or the one cell that holds
' it; a number or truth value is its own result. #VALUE! for several cells, an empty one, an error, and a text of more
' than 255 characters, and where more than 16 texts evaluate one another.
Public Function EVALvba(ByVal StringFormula As Variant) As Variant
    Dim formulaText As Variant
    On Error GoTo Failed
    formulaText = PlainValue(StringFormula)
    If IsArray(formulaText) Or IsError(formulaText) Or IsEmpty(formulaText) Then GoTo Failed
    If VarType(formulaText) <> vbString Then
        EVALvba = formulaText
        Exit Function
    End If
    formulaText = Trim(formulaText)
    If Left(formulaText, 1) = "=" Then formulaText = Mid(formulaText, 2)
    If Len(formulaText) = 0 Or Len(formulaText) > LongestFormula Then GoTo Failed
    EVALvba = Evaluated(CallingSheet(StringFormula), formulaText)
    Exit Function
Failed:
    EVALvba = CVErr(xlErrValue)
End Function

' Whether any cell of TheRange has a formula.
Public Function HASFORMULAvba(ByVal TheRange As Variant) As Variant
    On Error GoTo Failed
    HASFORMULAvba = HoldsFormula(TheRange)
    Exit Function
Failed:
    HASFORMULAvba = CVErr(xlErrValue)
End Function

Private Function CountToLastFilled(ByVal TheRange As Variant, ByVal byRows As Boolean) As Variant
    Dim first As Long
    On Error GoTo Failed
    first = FirstLine(TheRange, byRows)
    CountToLastFilled = LastFilledLine(TheRange, first - 1, byRows) - first + 1
    Exit Function
Failed:
    CountToLastFilled = CVErr(xlErrValue)
End Function

Private Function CountToGap(ByVal TheRange As Variant, ByVal byRows As Boolean) As Variant
    Dim first As Long, index As Long, last As Long
    On Error GoTo Failed
    first = FirstLine(TheRange, byRows)
    last = LineBeforeGap(TheRange, first, byRows)
    ' Before the gap every visible line is filled.
    For index = last To first Step -1
        If Not IsHidden(TheRange, index, byRows) Then Exit For
    Next
    CountToGap = index - first + 1
    Exit Function
Failed:
    CountToGap = CVErr(xlErrValue)
End Function

Private Function CountToLastUsed(ByVal TheRange As Variant, ByVal byRows As Boolean) As Variant
    Dim first As Long, last As Long
    On Error GoTo Failed
    first = FirstLine(TheRange, byRows)
    last = LastUsedLine(TheRange, byRows)
    If last < first Then last = first - 1
    CountToLastUsed = last - first + 1
    Exit Function
Failed:
    CountToLastUsed = CVErr(xlErrValue)
End Function

' The topmost row of all areas, or the leftmost column.
Private Function FirstLine(ByVal TheRange As Range, ByVal byRows As Boolean) As Long
    Dim area As Range, index As Long
    For Each area In TheRange.Areas
        If byRows Then index = area.Row Else index = area.Column
        If FirstLine = 0 Or index < FirstLine Then FirstLine = index
    Next
End Function

' The last line of the used range of the sheet; 0 on an empty sheet, where Excel says that the first cell is used.
Private Function LastUsedLine(ByVal reference As Range, ByVal byRows As Boolean) As Long
    Dim used As Range
    Set used = reference.Worksheet.UsedRange
    If used.Rows.Count = 1 And used.Columns.Count = 1 Then
        If Not IsFilled(used) Then Exit Function
    End If
    If byRows Then
        LastUsedLine = used.Row + used.Rows.Count - 1
    Else
        LastUsedLine = used.Column + used.Columns.Count - 1
    End If
End Function

' The last line after atLeast that is filled in the columns or rows of TheRange; atLeast if there is none. Each step
' halves the lines among which it is.
Private Function LastFilledLine(ByVal TheRange As Range, ByVal atLeast As Long, ByVal byRows As Boolean) As Long
    Dim area As Range, last As Long, middle As Long
    For Each area In TheRange.Areas
        last = LastUsedLine(area, byRows)
        Do While atLeast < last
            middle = last - (last - atLeast) \ 2
            If IsFilled(CellsOfLines(area, middle, last, byRows)) Then
                atLeast = middle
            Else
                last = middle - 1
            End If
        Loop
    Next
    LastFilledLine = atLeast
End Function

' The last line before the first visible one from first on that is empty, or the last used line.
Private Function LineBeforeGap(ByVal TheRange As Range, ByVal first As Long, ByVal byRows As Boolean) As Long
    Dim index As Long, last As Long, lastRead As Long, seen As Variant
    last = LastUsedLine(TheRange, byRows)
    lastRead = first - 1
    For index = first To last
        If index > lastRead Then
            lastRead = index + LinesAtOnce - 1
            If lastRead > last Then lastRead = last
            seen = ReadLines(TheRange, index, lastRead, byRows)
        End If
        If Not seen(index) Then
            If Not IsHidden(TheRange, index, byRows) Then
                If Not IsLineFilled(TheRange, index, byRows) Then Exit For
            End If
        End If
    Next
    LineBeforeGap = index - 1
End Function

' An array: of each of the lines whether something was seen in it. What was not seen may be there all the same: long
' lines are not read, and an empty text looks like nothing.
Private Function ReadLines(ByVal TheRange As Range, ByVal first As Long, ByVal last As Long, _
        ByVal byRows As Boolean) As Variant
    Dim seen() As Boolean, area As Range, block As Range
    ReDim seen(first To last)
    For Each area In TheRange.Areas
        Set block = CellsOfLines(area, first, last, byRows)
        If Not block Is Nothing Then
            If byRows And block.Columns.Count <= LongLine Then
                NoteLines seen, block.Row, FormulasOf(block), True
            ElseIf Not byRows And block.Rows.Count <= LongLine Then
                NoteLines seen, block.Column, FormulasOf(block), False
            End If
        End If
    Next
    ReadLines = seen
End Function

Private Sub NoteLines(seen() As Boolean, ByVal first As Long, ByVal formulas As Variant, ByVal byRows As Boolean)
    Dim row As Long, column As Long
    For row = 1 To UBound(formulas, 1)
        For column = 1 To UBound(formulas, 2)
            If Len(formulas(row, column)) > 0 Then
                If byRows Then seen(first + row - 1) = True Else seen(first + column - 1) = True
            End If
        Next
    Next
End Sub

' The formulas and values of a block as texts, from (1, 1) on. They are there before the cells are calculated, and an
' error is a text like others.
Private Function FormulasOf(ByVal block As Range) As Variant
    Dim formulas As Variant
    formulas = block.Formula
    If Not IsArray(formulas) Then
        Dim only(1 To 1, 1 To 1) As Variant
        only(1, 1) = formulas
        formulas = only
    End If
    FormulasOf = formulas
End Function

Private Function IsLineFilled(ByVal TheRange As Range, ByVal index As Long, ByVal byRows As Boolean) As Boolean
    Dim area As Range
    For Each area In TheRange.Areas
        If IsFilled(CellsOfLines(area, index, index, byRows)) Then
            IsLineFilled = True
            Exit Function
        End If
    Next
End Function

' The used cells of the area's columns in rows, or of its rows in columns; Nothing if there are none.
Private Function CellsOfLines(ByVal area As Range, ByVal first As Long, ByVal last As Long, _
        ByVal byRows As Boolean) As Range
    Dim sheet As Worksheet
    Set sheet = area.Worksheet
    If byRows Then
        Set CellsOfLines = Application.Intersect(area.EntireColumn, sheet.UsedRange, _
            sheet.Range(sheet.Cells(first, 1), sheet.Cells(last, 1)).EntireRow)
    Else
        Set CellsOfLines = Application.Intersect(area.EntireRow, sheet.UsedRange, _
            sheet.Range(sheet.Cells(1, first), sheet.Cells(1, last)).EntireColumn)
    End If
End Function

Private Function IsFilled(ByVal block As Range) As Boolean
    If block Is Nothing Then Exit Function
    If Application.WorksheetFunction.CountA(block) > 0 Then
        IsFilled = True
    Else
        ' Formulas that are still to be calculated have no value.
        IsFilled = HoldsFormula(block)
    End If
End Function

Private Function HoldsFormula(ByVal reference As Range) As Boolean
    Dim area As Range, answer As Variant
    For Each area In reference.Areas
        answer = area.HasFormula
        ' Null: some cells have one, others have not.
        If IsNull(answer) Then answer = True
        If answer Then
            HoldsFormula = True
            Exit Function
        End If
    Next
End Function

Private Function IsHidden(ByVal reference As Range, ByVal index As Long, ByVal byRows As Boolean) As Boolean
    If byRows Then
        IsHidden = reference.Worksheet.Rows(index).Hidden
    Else
        IsHidden = reference.Worksheet.Columns(index).Hidden
    End If
End Function

Private Function Evaluated(ByVal sheet As Worksheet, ByVal formulaText As String) As Variant
    Evaluated = CVErr(xlErrValue)
    If evaluationsUnderWay >= DeepestEvaluation Then Exit Function
    evaluationsUnderWay = evaluationsUnderWay + 1
    On Error GoTo Ended
    Evaluated = PlainValue(sheet.Evaluate(formulaText))
Ended:
    evaluationsUnderWay = evaluationsUnderWay - 1
End Function

' What an evaluation gave, or what an argument holds: the values of a reference's cells, or the value as it is.
Private Function PlainValue(ByVal valueOrCells As Variant) As Variant
    If IsObject(valueOrCells) Then PlainValue = ValuesOf(valueOrCells) Else PlainValue = valueOrCells
End Function

' Dates and currencies are numbers here, currencies not rounded.
Private Function ValuesOf(ByVal reference As Range) As Variant
    If reference.Areas.Count = 1 Then ValuesOf = reference.Value2 Else ValuesOf = CVErr(xlErrValue)
End Function

' The sheet of the calling cell, else that of the text's cell, else the active one.
Private Function CallingSheet(ByVal StringFormula As Variant) As Worksheet
    If TypeName(Application.Caller) = "Range" Then
        Set CallingSheet = Application.Caller.Worksheet
    ElseIf IsObject(StringFormula) Then
        Set CallingSheet = SheetOf(StringFormula)
    Else
        Set CallingSheet = ActiveSheet
    End If
End Function

Private Function SheetOf(ByVal reference As Range) As Worksheet
    Set SheetOf = reference.Worksheet
End Function
