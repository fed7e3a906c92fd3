loops
do i f=1 l=3
printi i
end_do
do i f=1 l=0
wrong
end_do
printi i
do i f=3 l=1 s=-1
printi i
end_do
setr x v=0
do x f=0.5 l=1.5 s=0.5
print x
end_do
seti n v=2
while n .gt. 0
do j f=1 l=2
seti k v=~j /* inner
printi k
end_do
seti m v=~n
do n f=~m l=-9 s=-1
break_loop
end_do
end_while
after
seti n v=1
while n
do j f=1 l=2
do k f=1 l=2
printi k
end_do
end_do
seti n v=0
end_while
setch c s='x'
do c f=1 l=3
wrong
end_do
while absent
wrong
end_while
do last f=2147483646 l=2147483647
printi last
end_do
do i f=1 l=2
if i .eq. 2
second
else
first
endif
end_do
flush
q
