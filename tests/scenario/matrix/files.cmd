files
/* Arrays to files and back; damaged and missing files
input a r=2 c=2
1 -2.5
3e-12 4.5e+200
inputi k c=3
1 -20 123456789
inputc z r=2
1 2
-0.5 0
write a a.txt -f
write a table -ext -f -tab
write k k.txt -f
write k k.txt -f -tab -a
write z z.txt -f
write a arrays.bin
write k arrays.bin -a
read b arrays.bin
ll b
read a truncated.bin
read a no_such_file
p a
setch name s=text
write name name.txt -f
write name
write absent f
read c
rename_file arrays.bin first.bin
read b arrays.bin
read b first.bin
rm_file table -ext
rm_file first.bin
rm_file first.bin
flush
q
