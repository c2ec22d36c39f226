#!/usr/bin/perl
# What somebody writes in an hour with Net::LDAP::LDIF. It is here to measure against.
#
#   net_ldap_ldif.pl read OLD NEW         reads both files
#   net_ldap_ldif.pl difference OLD NEW   prints the values that are on one side only
#   net_ldap_ldif.pl merge OLD NEW OUT    writes NEW with the entries and values of OLD that it lacks
#
# Two DNs are the same when they are but for letter case and blanks after separators.
use strict;
use warnings;
use IO::Handle;
use Net::LDAP::LDIF;

sub key_of {
    my ($dn) = @_;
    $dn =~ s/,\s+/,/g;
    return lc $dn;
}

# The DNs' keys in the order of the file, and the entries by key.
sub read_file {
    my ($path) = @_;
    my $ldif = Net::LDAP::LDIF->new($path, 'r', onerror => 'die');
    my (@order, %entries);
    while (my $entry = $ldif->read_entry) {
        my $key = key_of($entry->dn);
        push @order, $key;
        $entries{$key} = $entry;
    }
    $ldif->done;
    return { order => \@order, entries => \%entries };
}

# The values of an attribute that one entry has and the other, which may be undefined, has not.
sub missing {
    my ($one, $other, $attribute) = @_;
    my $held = defined $other ? $other->get_value($attribute, asref => 1) : undef;
    my %held = map { $_ => 1 } @{ $held // [] };
    return grep { !$held{$_} } @{ $one->get_value($attribute, asref => 1) };
}

sub print_missing {
    my ($sign, $one, $other) = @_;
    my $printed = 0;
    foreach my $attribute ($one->attributes) {
        foreach my $value (missing($one, $other, $attribute)) {
            print 'dn: ', $one->dn, "\n" if !$printed++;
            print "$sign$attribute: $value\n";
        }
    }
    return;
}

sub difference {
    my ($old, $new) = @_;
    print_missing('-', $old->{entries}{$_}, $new->{entries}{$_}) foreach @{ $old->{order} };
    print_missing('+', $new->{entries}{$_}, $old->{entries}{$_}) foreach @{ $new->{order} };
    return;
}

sub merge {
    my ($old, $new) = @_;
    foreach my $key (@{ $old->{order} }) {
        my $from = $old->{entries}{$key};
        my $to = $new->{entries}{$key};
        if (!defined $to) {
            push @{ $new->{order} }, $key;
            $new->{entries}{$key} = $from;
            next;
        }
        foreach my $attribute ($from->attributes) {
            my @added = missing($from, $to, $attribute);
            $to->add($attribute => \@added) if @added;
        }
    }
    return;
}

sub write_file {
    my ($new, $path) = @_;
    open my $file, '>', "$path.new" or die "$path.new: $!\n";
    my $ldif = Net::LDAP::LDIF->new($file, 'w', onerror => 'die', change => 0);
    $ldif->write_entry($new->{entries}{$_}) foreach @{ $new->{order} };
    $file->flush or die "$path.new: $!\n";
    $file->sync or die "$path.new: $!\n";
    close $file or die "$path.new: $!\n";
    rename "$path.new", $path or die "$path: $!\n";
    return;
}

my $mode = $ARGV[0] // q();
my %arguments = (read => 3, difference => 3, merge => 4);
die "usage: net_ldap_ldif.pl read|difference OLD NEW or net_ldap_ldif.pl merge OLD NEW OUT\n"
  if !exists $arguments{$mode} || @ARGV != $arguments{$mode};
my $old = read_file($ARGV[1]);
my $new = read_file($ARGV[2]);
difference($old, $new) if $mode eq 'difference';
if ($mode eq 'merge') {
    merge($old, $new);
    write_file($new, $ARGV[3]);
}
print STDERR scalar @{ $old->{order} }, ' and ', scalar @{ $new->{order} }, " entries\n";
