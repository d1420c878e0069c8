' files.bas: writes a small table to a file, then reads it back line by line.
' Shows the channels 0 to 9: fwopen, fprint and fclose to write; fropen, finput and feof to read.
' feof turns true only once a read has reached the end of the file. Here the last line is written with
' ";" (no line end after it), so reading it reaches the end and the loop stops cleanly. A file whose
' last line ends in a line end would need one more read, and that read fails with "Device I/O error".
' Run it: make run ARGS="examples/files.bas"   (it writes squares.txt in the current directory)
fwopen 1, "squares.txt"
for i=1 to 5
fprint 1, i + " squared is " + i*i;
if i=5 then $written
fprint 1, ""
$written
next
fclose 1
print "squares.txt holds:"
fropen 1, "squares.txt"
icount=0
$read
sline=finput(1)
icount=icount+1
' Every line but the last comes back with its line end, CR LF: print it without adding another.
print "  " + sline;
if feof(1)=0 then $read
fclose 1
print
print icount + " lines read."
