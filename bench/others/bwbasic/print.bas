10 REM Printing: 100 000 numbered lines
20 FOR I=1 TO 100000
30 PRINT "line ";MID$(STR$(I),2)
40 NEXT I
50 SYSTEM
